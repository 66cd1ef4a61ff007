// The worker's half of the interpreter's talk with its page, built into basic.js
// (emcc --pre-js) so that it reaches the module's memory, files and environment.
// The C++ side calls veloHost (src/platform/web_host.cpp, src/gdi/window_thread_web.cpp);
// the page's half is web/main.js. web/worker.js sets Module.veloStart before loading us.

var veloHost = (() => {
  const home = '/home/basic';
  // What the page's storage holds of each file: its modification time, or -1 when
  // it changed within the millisecond of the last look (another change may follow).
  const kept = new Map();

  const post = (message, transfer) => postMessage(message, transfer || []);

  function makeParents(path) {
    const parts = path.split('/');
    for (let i = 2; i < parts.length; ++i) {
      const folder = parts.slice(0, i).join('/');
      if (!FS.analyzePath(folder).exists) FS.mkdir(folder);
    }
  }

  // Every regular file under folder, as paths relative to home.
  function walk(folder, prefix, out) {
    for (const name of FS.readdir(folder)) {
      if (name === '.' || name === '..') continue;
      const path = folder + '/' + name;
      const stat = FS.lstat(path);
      if (FS.isDir(stat.mode)) walk(path, prefix + name + '/', out);
      else if (FS.isFile(stat.mode)) out.push({ rel: prefix + name, path, mtime: stat.mtime.getTime() });
    }
    return out;
  }

  Module.preRun = [() => {
    const start = Module.veloStart;
    ENV.HOME = home;  // the line history goes under it, and is kept with the files
    FS.mkdirTree(home);
    FS.mkdir('/examples');
    for (const example of start.examples) {
      FS.writeFile('/examples/' + example.name, example.text);
      FS.chmod('/examples/' + example.name, 0o444);
    }
    FS.chmod('/examples', 0o555);
    for (const file of start.files) {
      const path = home + '/' + file.path;
      makeParents(path);
      FS.writeFile(path, file.data);
      FS.utime(path, file.mtime, file.mtime);
      kept.set(file.path, file.mtime);
    }
    FS.chdir(home);
  }];

  Module.onRuntimeInitialized = () => {
    const start = Module.veloStart;
    const shared = Module._web_shared();
    const words = new Int32Array(wasmMemory.buffer, shared, 8);
    Atomics.store(words, 3, start.cols);
    Atomics.store(words, 4, start.rows);
    post({ t: 'ready', memory: wasmMemory.buffer, shared, flag: Module._web_async_flag() });
  };
  Module.onExit = (code) => post({ t: 'exit', code });
  Module.onAbort = (what) => post({ t: 'abort', what: String(what) });
  Module.print = Module.printErr = (text) => post({ t: 'log', text });

  return {
    output(bytes, n) {
      const copy = new Uint8Array(wasmMemory.buffer, bytes, n).slice();
      post({ t: 'out', bytes: copy }, [copy.buffer]);
    },
    state(what, on) { post({ t: 'state', what, on: !!on }); },
    flushTimer(ms) { post({ t: 'flush', ms }); },
    received(name, ok) { post({ t: 'received', name, ok: !!ok }); },
    window(request, n, width, height, pixels, creating, painting, pending, open) {
      post({ t: 'window', request, n, width, height, pixels, memory: wasmMemory.buffer,
             flags: { creating, painting, pending, open } });
    },
    // Sends the page what changed in the user's folder since the last call.
    syncFiles() {
      const now = Date.now();
      const put = [], transfer = [], seen = new Set();
      for (const file of walk(home, '', [])) {
        seen.add(file.rel);
        if (kept.get(file.rel) === file.mtime) continue;
        const data = FS.readFile(file.path);
        put.push({ path: file.rel, data, mtime: file.mtime });
        transfer.push(data.buffer);
        kept.set(file.rel, file.mtime < now ? file.mtime : -1);
      }
      const gone = [...kept.keys()].filter((rel) => !seen.has(rel));
      for (const rel of gone) kept.delete(rel);
      if (put.length || gone.length) post({ t: 'files', put, gone }, transfer);
    },
  };
})();
