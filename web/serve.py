#!/usr/bin/env python3
"""Serves web/dist on localhost with the headers that SharedArrayBuffer needs.

Usage: web/serve.py [PORT] [FOLDER]   (make web-serve)
"""
import functools
import http.server
import sys


class Handler(http.server.SimpleHTTPRequestHandler):
    # The page's worker waits on memory shared with the page: a browser allows
    # that only to a page isolated from other origins.
    def end_headers(self):
        self.send_header("Cross-Origin-Opener-Policy", "same-origin")
        self.send_header("Cross-Origin-Embedder-Policy", "require-corp")
        self.send_header("Cache-Control", "no-cache")
        super().end_headers()


Handler.extensions_map = {**Handler.extensions_map, ".wasm": "application/wasm",
                          ".js": "text/javascript"}

if __name__ == "__main__":
    port = int(sys.argv[1]) if len(sys.argv) > 1 else 8000
    folder = sys.argv[2] if len(sys.argv) > 2 else "web/dist"
    server = http.server.ThreadingHTTPServer(
        ("127.0.0.1", port), functools.partial(Handler, directory=folder))
    print(f"Serving {folder} at http://127.0.0.1:{server.server_address[1]}/ (Ctrl+C stops)",
          flush=True)
    try:
        server.serve_forever()
    except KeyboardInterrupt:
        pass
