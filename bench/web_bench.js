// The benchmark programs in the web page against the native interpreter: each
// program is sent to the page as an upload, loaded with GET and RUN there RUNS
// times; the page times each run from its start to its last output on the screen.
// The native build runs the same file with its output to a pipe. Wall-clock
// time, the fastest of RUNS (5) runs; the table goes to bench/WEB_RESULTS.md (OUT=
// another file).
// With ASYNCIFY_DIST, a page whose interpreter waits through Asyncify instead
// (cmake -DBASIC_WEB_ASYNCIFY=ON) runs the programs of ASYNCIFY_PROGRAMS too.
// Usage: node bench/web_bench.js DIST_FOLDER NATIVE_BASIC [NAME_FILTER]
'use strict';
const { spawnSync } = require('child_process');
const fs = require('fs');
const os = require('os');
const path = require('path');
const { root, open, screen, waitForState, type } = require('../tests/web/browser');

const [distArg, nativeArg, filter = ''] = process.argv.slice(2);
const dist = path.resolve(distArg || path.join(root, 'web', 'dist'));
const native = path.resolve(nativeArg || path.join(root, 'build', 'basic'));
const runs = Number(process.env.RUNS || 5);
const out = path.resolve(process.env.OUT || path.join(__dirname, 'WEB_RESULTS.md'));
// The ones that time what a page has no counterpart for: a process's start, its peak memory.
const skipped = new Set(['startup.bas', 'memory.bas']);

// The fastest run: on a machine shared with other work the others only measure the load.
const fastest = (values) => Math.min(...values);

// In a folder of its own, which takes the data files a program writes.
function nativeSeconds(file) {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'basic-bench-'));
  const times = [];
  try {
    for (let i = 0; i < runs; ++i) {
      const start = process.hrtime.bigint();
      const run = spawnSync(native, [file], { cwd: folder, stdio: ['ignore', 'pipe', 'inherit'],
                                              maxBuffer: 1 << 30 });
      if (run.status !== 0) throw new Error(`${file}: native status ${run.status}`);
      times.push(Number(process.hrtime.bigint() - start) / 1e9);
    }
  } finally {
    fs.rmSync(folder, { recursive: true, force: true });
  }
  return fastest(times);
}

// Seconds to the end of the run, and to its last output on the screen.
async function webSeconds(page, name) {
  await type(page, `GET ${name}`);
  const ran = [], shown = [];
  for (let i = 0; i < runs; ++i) {
    await type(page, 'RUN', 'ready', 600000);
    const text = await screen(page);
    if (!text.endsWith('\n\nDONE')) throw new Error(`${name} did not end with DONE:\n${text.slice(-500)}`);
    const run = await page.evaluate(() => window.velo.runs[window.velo.runs.length - 1]);
    ran.push((run.end - run.start) / 1000);
    shown.push((run.shown - run.start) / 1000);
    await type(page, 'CLS');
  }
  return { first: shown[0], ran: fastest(ran), shown: fastest(shown) };
}

// Each program of names in the page of folder: its seconds by name.
async function inPage(folder, names) {
  const { page, url, close } = await open(folder);
  const seconds = {};
  try {
    await page.goto(url);
    await waitForState(page, 'ready');
    await page.setInputFiles('#upload', names.map((name) => path.join(root, 'bench', 'programs', name)));
    for (const name of names) await page.waitForSelector(`#saved button.load:text("${name}")`);
    for (const name of names) seconds[name] = await webSeconds(page, name);
  } finally {
    await close();
  }
  return seconds;
}

(async () => {
  const programs = fs.readdirSync(path.join(root, 'bench', 'programs'))
    .filter((name) => name.endsWith('.bas') && !skipped.has(name) && name.includes(filter)).sort();
  const rows = [];
  const web = await inPage(dist, programs);
  {
    for (const name of programs) {
      const file = path.join(root, 'bench', 'programs', name);
      const here = nativeSeconds(file);
      const w = web[name];
      rows.push({ name: name.replace(/\.bas$/, ''), here, ...w });
      console.log(`${name.padEnd(20)} native ${here.toFixed(3)} s   web ${w.ran.toFixed(3)} s, ` +
                  `shown ${w.shown.toFixed(3)} s, first ${w.first.toFixed(3)} s   ` +
                  `${(w.shown / here).toFixed(2)}x`);
    }
  }
  const geomean = (key) =>
    Math.exp(rows.reduce((sum, r) => sum + Math.log(r[key] / r.here), 0) / rows.length).toFixed(2);
  const chromium = spawnSync('chromium', ['--version'], { encoding: 'utf8' }).stdout.trim();
  const lines = [
    '# The web page against the native build',
    '',
    `Written by \`make web-bench\` (bench/web_bench.js) on ${new Date().toISOString().slice(0, 16)} UTC,`,
    `${os.cpus().length} cores (${os.cpus()[0].model.trim()}), ${chromium}, headless.`,
    '',
    `Wall-clock seconds, the fastest of ${runs} runs. Native: the process, its output to a pipe.`,
    'Web run: from the start of the run to its end, as the page is told them; web shown: to its',
    'last output shown in the terminal widget; first: the first of the runs, shown (its run loop',
    'is still the browser\'s first-tier code).',
    '',
    '| program | native | web run | web shown | first | run/native | shown/native |',
    '|---|---:|---:|---:|---:|---:|---:|',
    ...rows.map((r) => `| ${r.name} | ${r.here.toFixed(3)} | ${r.ran.toFixed(3)} | ${r.shown.toFixed(3)} | ` +
                       `${r.first.toFixed(3)} | ${(r.ran / r.here).toFixed(2)} | ${(r.shown / r.here).toFixed(2)} |`),
    `| geometric mean ||||| ${geomean('ran')} | ${geomean('shown')} |`,
    '',
  ];
  if (process.env.ASYNCIFY_DIST) {
    const names = (process.env.ASYNCIFY_PROGRAMS || 'float_loop,gosub').split(',').map((n) => `${n}.bas`);
    const waits = await inPage(path.resolve(process.env.ASYNCIFY_DIST), names);
    lines.push('The same page with an interpreter that waits through Asyncify instead of Atomics.wait',
               '(web run, seconds):', '', '| program | Atomics.wait | Asyncify | Asyncify/Atomics.wait |',
               '|---|---:|---:|---:|');
    for (const name of names) {
      const a = web[name] ? web[name].ran : (await inPage(dist, [name]))[name].ran;
      const b = waits[name].ran;
      lines.push(`| ${name.replace(/\.bas$/, '')} | ${a.toFixed(3)} | ${b.toFixed(3)} | ${(b / a).toFixed(2)} |`);
      console.log(`${name.padEnd(20)} Atomics.wait ${a.toFixed(3)} s   Asyncify ${b.toFixed(3)} s`);
    }
    lines.push('');
  }
  fs.writeFileSync(out, lines.join('\n'));
  console.log(`geometric mean ${geomean('shown')}x; the table is in ${path.relative(process.cwd(), out)}`);
})().catch((e) => {
  console.error(e);
  process.exit(1);
});
