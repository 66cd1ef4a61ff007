'use strict';
// The page around the interpreter: a terminal widget on its console, canvases for
// its graphics windows, and the browser's storage for its files. The interpreter
// runs in web/worker.js; web/host.js is its half of the messages, and
// src/platform/web_host.h lays out the memory the two share.

(() => {
  // Int32 slots of the shared block (web::Shared), and its byte offsets.
  const Slot = { wake: 0, keyHead: 1, keyTail: 2, cols: 3, rows: 4, resizes: 5, outSent: 6,
                 outShown: 7, inboxState: 8, inboxLength: 9, inboxFlags: 10 };
  const kNameOffset = 44, kNameBytes = 256, kKeysOffset = 300, kKeyRing = 1024;
  const kInboxOffset = kKeysOffset + 4 * kKeyRing, kInboxBytes = 1 << 16;
  const kInboxFirst = 1, kInboxLast = 2;
  const Async = { break: 1, flushDue: 2 };
  // The line editor's key codes (src/console/line_editor.h).
  const Keys = { Enter: 13, Escape: 27, Backspace: 8, F1: 315, F2: 316, F3: 317, F4: 318,
                 F5: 319, ArrowUp: 328, ArrowLeft: 331, ArrowRight: 333, ArrowDown: 336,
                 Insert: 338, Delete: 339 };
  const kUnknownKey = 256;
  const kTitle = 'Velo Basic Test Window';
  const kMaxUpload = 64 << 20;

  const $ = (id) => document.getElementById(id);
  const statusLine = $('status');
  const encoder = new TextEncoder();

  const term = new Terminal({
    cursorBlink: true,
    fontFamily: 'DejaVu Sans Mono, Menlo, Consolas, monospace',
    fontSize: 15,
    scrollback: 5000,
    theme: { background: '#000000', foreground: '#c0c0c0' },
  });
  const fit = new FitAddon.FitAddon();
  term.loadAddon(fit);
  term.open($('terminal'));
  fit.fit();
  term.focus();

  // ---- the interpreter's worker and the memory it shares ----------------------------------

  let worker = null;
  let words = null;  // Int32Array over the shared block
  let bytes = null;  // Uint8Array over the whole memory
  let base = 0;      // the shared block's byte offset
  let flag = 0;      // the async flag's byte offset
  let state = 'starting';
  let running = false, reading = false;
  let typedSinceRead = 0;  // keys sent since the current line read began
  const pendingKeys = [];

  const page = { files: new Map(), examples: [], db: null };
  let writing = 0;  // output the terminal has not yet taken
  // Read by the browser test and the benchmarks: lines read so far, whether the screen
  // shows all output, and when each run started, ended and had its output shown.
  window.velo = { readyAt: 0, reads: 0, runs: [], state: () => state, settled: () => !writing, term };

  const lastRun = () => window.velo.runs[window.velo.runs.length - 1];
  // The run that ended has all its output on the screen.
  function noteShown() {
    const run = lastRun();
    if (run && run.end && !run.shown && !writing) run.shown = performance.now();
  }

  function wake() {
    Atomics.add(words, Slot.wake, 1);
    Atomics.notify(words, Slot.wake);
  }

  function sendKeys() {
    if (!words) return;
    const head = Atomics.load(words, Slot.keyHead);
    const room = kKeyRing - (head - Atomics.load(words, Slot.keyTail));
    const n = Math.min(room, pendingKeys.length);
    const ring = new Int32Array(words.buffer, base + kKeysOffset, kKeyRing);
    for (let i = 0; i < n; ++i) ring[(head + i) & (kKeyRing - 1)] = pendingKeys[i];
    pendingKeys.splice(0, n);
    Atomics.store(words, Slot.keyHead, head + n);
    if (n) wake();
    if (pendingKeys.length) setTimeout(sendKeys, 10);  // a long paste: the ring was full
  }

  function pushKeys(codes) {
    if (state === 'ended') {
      if (codes.includes(Keys.Enter)) start();
      return;
    }
    pendingKeys.push(...codes);
    typedSinceRead += codes.length;
    sendKeys();
  }

  function pushText(text) {
    pushKeys(Array.from(encoder.encode(text)));
  }

  function sendBreak() {
    if (!words) return;
    Atomics.or(bytes, flag, Async.break);
    wake();
  }

  function setState(next) {
    state = next;
    const text = { starting: 'Starting', ready: 'Ready', running: 'Running',
                   input: 'Waiting for input', ended: 'Ended' }[next];
    statusLine.textContent = text;
    statusLine.classList.toggle('busy', next === 'running' || next === 'input');
    for (const button of document.querySelectorAll('button.load')) button.disabled = next !== 'ready';
  }

  function updateState() {
    if (state === 'ended') return;
    setState(running ? (reading ? 'input' : 'running') : (reading ? 'ready' : 'running'));
  }

  function start() {
    // A new interpreter takes the screen as empty, with the cursor at the top left: what
    // an earlier one showed scrolls up out of its way.
    if (worker === null && window.velo.reads) term.write('\r\n'.repeat(term.rows) + '\x1b[H');
    setState('starting');
    words = bytes = null;
    running = reading = false;
    pendingKeys.length = 0;
    const files = [...page.files.values()].map((f) => ({ path: f.path, data: f.data, mtime: f.mtime }));
    worker = new Worker('worker.js');
    worker.onmessage = (event) => onMessage(event.data);
    worker.onerror = (event) => {
      if (state !== 'ended') ended(`The interpreter failed: ${event.message}.`);
    };
    worker.postMessage({ t: 'start', files, examples: page.examples, cols: term.cols, rows: term.rows });
  }

  function ended(why) {
    if (worker) worker.terminate();
    worker = null;
    words = bytes = null;
    closeAllWindows();
    setState('ended');
    term.write(`\r\n\x1b[0m[${why} Press Enter to start again.]\r\n`);
  }

  function onMessage(m) {
    switch (m.t) {
      case 'ready':
        bytes = new Uint8Array(m.memory);
        words = new Int32Array(m.memory, m.shared, 16);
        base = m.shared;
        flag = m.flag;
        sendKeys();
        break;
      case 'out':
        ++writing;
        term.write(m.bytes, () => {
          --writing;
          noteShown();
          if (!words) return;
          Atomics.add(words, Slot.outShown, m.bytes.length);
          wake();
        });
        break;
      case 'flush':
        setTimeout(() => {
          if (!words) return;
          Atomics.or(bytes, flag, Async.flushDue);
          wake();
        }, m.ms);
        break;
      case 'state':
        if (m.what === 'running') {
          running = m.on;
          if (m.on) window.velo.runs.push({ start: performance.now() });
          else lastRun().end = performance.now();
          noteShown();
        }
        if (m.what === 'reading') {
          reading = m.on;
          if (m.on) {
            typedSinceRead = pendingKeys.length;
            ++window.velo.reads;
            if (!window.velo.readyAt) window.velo.readyAt = performance.now();
          }
        }
        updateState();
        break;
      case 'files':
        keepFiles(m.put, m.gone);
        break;
      case 'received':
        $('transfer').textContent = m.ok ? `${m.name} is in your files.` : `${m.name} could not be written.`;
        break;
      case 'window':
        onWindow(m);
        break;
      case 'exit':
        ended('The interpreter ended.');
        break;
      case 'abort':  // without a reason of its own, memory that could not be had
        ended(`The interpreter stopped: ${m.what || 'it ran out of memory'}. Your saved files are kept.`);
        break;
      case 'log':
        console.log(m.text);
        break;
    }
  }

  // ---- keys --------------------------------------------------------------------------------

  // Keys the line editor has codes for go to it directly; text comes through onData.
  term.attachCustomKeyEventHandler((event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return true;
    const code = Keys[event.key];
    if (code === undefined) return true;
    if (event.type === 'keydown') {
      event.preventDefault();  // F5 stays a key of the editor, not a reload
      pushKeys([code]);
    }
    return false;
  });

  term.onData((data) => {
    if (data === '\x03') return sendBreak();
    if (data.startsWith('\x1b')) return pushKeys([data === '\x1b' ? Keys.Escape : kUnknownKey]);
    const codes = [];
    for (const c of data) {
      if (c === '\r') codes.push(Keys.Enter);
      else if (c === '\x7f') codes.push(Keys.Backspace);
      else codes.push(...encoder.encode(c));
    }
    pushKeys(codes);
  });

  function resized() {
    fit.fit();
    if (!words) return;
    Atomics.store(words, Slot.cols, term.cols);
    Atomics.store(words, Slot.rows, term.rows);
    Atomics.add(words, Slot.resizes, 1);
    wake();
  }
  window.addEventListener('resize', resized);

  // ---- graphics windows: the page plays the window thread ------------------------------------

  const windows = new Map();  // GDI number -> { panel, canvas }

  function makePanel(n, width, height) {
    const panel = document.createElement('div');
    panel.className = 'window';
    panel.title = `@${n}`;
    // Beside the side panel, where the terminal's lines are shortest; later ones cascade.
    const offset = 28 * (windows.size % 8);
    const right = document.querySelector('aside').getBoundingClientRect().left;
    panel.style.left = `${Math.max(0, right - Math.min(width, 16384) - 24 - offset)}px`;
    panel.style.top = `${56 + offset}px`;
    const title = document.createElement('div');
    title.className = 'title';
    title.textContent = kTitle;
    const close = document.createElement('button');
    close.textContent = '\u00d7';
    close.title = 'Close';
    title.append(close);
    const canvas = document.createElement('canvas');
    canvas.width = Math.min(width, 16384);
    canvas.height = Math.min(height, 16384);
    const context = canvas.getContext('2d');
    if (context) {  // none for a canvas larger than the browser draws: it stays blank
      context.fillStyle = '#fff';
      context.fillRect(0, 0, canvas.width, canvas.height);
    }
    panel.append(title, canvas);
    $('windows').append(panel);
    dragBy(title, panel);
    return { panel, canvas, close };
  }

  function dragBy(handle, panel) {
    handle.addEventListener('pointerdown', (event) => {
      if (event.target !== handle) return;
      const dx = event.clientX - panel.offsetLeft, dy = event.clientY - panel.offsetTop;
      const move = (e) => {
        panel.style.left = `${e.clientX - dx}px`;
        panel.style.top = `${Math.max(0, e.clientY - dy)}px`;
      };
      const stop = () => {
        removeEventListener('pointermove', move);
        removeEventListener('pointerup', stop);
      };
      addEventListener('pointermove', move);
      addEventListener('pointerup', stop);
    });
  }

  function paint(w, m) {
    const width = w.canvas.width, height = w.canvas.height;
    const pixels = new Uint32Array(m.memory, m.pixels, m.width * m.height);
    const image = new ImageData(width, height);
    const out = new Uint32Array(image.data.buffer);
    for (let y = 0; y < height; ++y) {
      for (let x = 0, i = y * m.width, o = y * width; x < width; ++x) {
        const p = pixels[i + x];  // 0x00RRGGBB
        out[o + x] = 0xff000000 | ((p & 0xff) << 16) | (p & 0xff00) | ((p >>> 16) & 0xff);
      }
    }
    w.canvas.getContext('2d').putImageData(image, 0, 0);
  }

  // The interpreter waits on the flags each request answers, so they are answered
  // even when the browser cannot show a picture that large.
  function onWindow(m) {
    const flags = new Uint8Array(m.memory);
    try {
      showWindow(m, flags);
    } catch (e) {
      console.log(`window @${m.n}: ${e.message}`);
    }
    if (m.request === 'create') {
      Atomics.store(flags, m.flags.open, 1);
      Atomics.store(flags, m.flags.creating, 0);
    } else if (m.request === 'close') {
      Atomics.store(flags, m.flags.creating, 0);
    } else if (m.request === 'paint') {
      Atomics.sub(flags, m.flags.painting, 1);
    } else if (m.request === 'marker') {
      Atomics.store(flags, m.flags.pending, 0);
    }
  }

  function showWindow(m, flags) {
    const w = windows.get(m.n);
    switch (m.request) {
      case 'create': {
        const made = makePanel(m.n, m.width, m.height);
        windows.set(m.n, made);
        // The user closes it: the program's next statement on it finds it gone.
        made.close.addEventListener('click', () => {
          Atomics.store(flags, m.flags.open, 0);
          made.panel.remove();
          windows.delete(m.n);
        });
        break;
      }
      case 'close':
        if (w) w.panel.remove();
        windows.delete(m.n);
        break;
      case 'paint':
        if (w) paint(w, m);
        break;
      case 'show':
      case 'hide':
        if (w) w.panel.hidden = m.request === 'hide';
        break;
    }
  }

  function closeAllWindows() {
    for (const w of windows.values()) w.panel.remove();
    windows.clear();
  }

  // ---- files: kept in IndexedDB, listed beside the terminal ---------------------------------

  function openStore() {
    return new Promise((resolve) => {
      const request = indexedDB.open('velo-basic', 1);
      request.onupgradeneeded = () => request.result.createObjectStore('files', { keyPath: 'path' });
      request.onsuccess = () => resolve(request.result);
      request.onerror = () => resolve(null);  // no storage: the files last as long as the page
    });
  }

  function readStore(db) {
    return new Promise((resolve) => {
      if (!db) return resolve([]);
      const request = db.transaction('files').objectStore('files').getAll();
      request.onsuccess = () => resolve(request.result);
      request.onerror = () => resolve([]);
    });
  }

  function keepFiles(put, gone) {
    for (const f of put) page.files.set(f.path, f);
    for (const path of gone) page.files.delete(path);
    if (page.db) {
      const store = page.db.transaction('files', 'readwrite').objectStore('files');
      for (const f of put) store.put(f);
      for (const path of gone) store.delete(path);
    }
    listFiles();
  }

  // GET's argument: quoted when it holds a blank.
  const fileArgument = (path) => (/\s/.test(path) ? `"${path}"` : path);

  function load(path) {
    if (state !== 'ready') return;
    if (typedSinceRead > 0) pushKeys([Keys.Escape]);  // drops what was typed, as Escape does
    pushText(`GET ${fileArgument(path)}`);
    pushKeys([Keys.Enter]);
    term.focus();
  }

  function download(f) {
    const link = document.createElement('a');
    link.href = URL.createObjectURL(new Blob([f.data]));
    link.download = f.path.split('/').pop();
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 1000);
    term.focus();
  }

  function listItem(label, title, onLoad, onDownload) {
    const item = document.createElement('li');
    const button = document.createElement('button');
    button.className = 'load';
    button.textContent = label;
    button.title = title;
    button.disabled = state !== 'ready';
    button.addEventListener('click', onLoad);
    item.append(button);
    if (onDownload) {
      const save = document.createElement('button');
      save.textContent = '\u2913';
      save.title = `Download ${label}`;
      save.addEventListener('click', onDownload);
      item.append(save);
    }
    return item;
  }

  function listFiles() {
    const list = $('saved');
    list.replaceChildren();
    const visible = [...page.files.values()]
      .filter((f) => !f.path.split('/').some((part) => part.startsWith('.')))
      .sort((a, b) => a.path.localeCompare(b.path));
    for (const f of visible)
      list.append(listItem(f.path, `GET ${f.path}`, () => load(f.path), () => download(f)));
    if (!visible.length) {
      const none = document.createElement('li');
      none.className = 'note';
      none.textContent = 'None yet.';
      list.append(none);
    }
  }

  function listExamples() {
    const list = $('examples');
    for (const e of page.examples) {
      const path = `/examples/${e.name}`;
      list.append(listItem(e.name, e.title, () => load(path), () => download({ path, data: e.text })));
    }
  }

  // A file goes to the interpreter in chunks through the shared inbox, taken while
  // it waits for a key; it lands in the working folder and comes back as a stored file.
  const uploads = [];
  let uploading = false;

  function plainName(name) {
    const cleaned = name.replace(/[\\/:]/g, '_').replace(/[\x00-\x1f\x7f]/g, '').replace(/^\.+/, '');
    return encoder.encode(cleaned).length < kNameBytes ? cleaned : '';
  }

  const inboxFree = () => new Promise((resolve) => {
    const poll = () => (words && Atomics.load(words, Slot.inboxState) === 0 ? resolve() : setTimeout(poll, 10));
    poll();
  });

  async function sendUploads() {
    if (uploading) return;
    uploading = true;
    while (uploads.length) {
      const { name, data } = uploads.shift();
      $('transfer').textContent = `Sending ${name}; the interpreter takes it when it waits for input.`;
      for (let at = 0; at === 0 || at < data.length; at += kInboxBytes) {
        await inboxFree();
        const chunk = data.subarray(at, at + kInboxBytes);
        const nameBytes = new Uint8Array(kNameBytes);
        nameBytes.set(encoder.encode(name));
        bytes.set(nameBytes, base + kNameOffset);
        bytes.set(chunk, base + kInboxOffset);
        Atomics.store(words, Slot.inboxLength, chunk.length);
        Atomics.store(words, Slot.inboxFlags,
                      (at === 0 ? kInboxFirst : 0) | (at + kInboxBytes >= data.length ? kInboxLast : 0));
        Atomics.store(words, Slot.inboxState, 1);
        wake();
      }
    }
    uploading = false;
  }

  $('upload').addEventListener('change', async (event) => {
    for (const file of event.target.files) {
      const name = plainName(file.name);
      if (!name || file.size > kMaxUpload) {
        $('transfer').textContent = `${file.name}: ${name ? 'too large' : 'not a usable name'}.`;
        continue;
      }
      uploads.push({ name, data: new Uint8Array(await file.arrayBuffer()) });
    }
    event.target.value = '';
    term.focus();
    sendUploads();
  });

  // ---- start-up: storage and examples first, then the worker ------------------------------

  (async () => {
    if (!crossOriginIsolated) {
      term.write('This page needs to be served with the headers Cross-Origin-Opener-Policy: same-origin\r\n' +
                 'and Cross-Origin-Embedder-Policy: require-corp (make web-serve sends them).\r\n');
      setState('ended');
      return;
    }
    const [db, examples] = await Promise.all([
      openStore(),
      fetch('examples.json').then((r) => r.json()).catch(() => []),
    ]);
    page.db = db;
    page.examples = examples;
    for (const f of await readStore(db)) page.files.set(f.path, f);
    listExamples();
    listFiles();
    start();
  })();
})();
