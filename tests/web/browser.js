// The web page in headless Chromium, for its test, its screenshot and its
// benchmarks: a server of the page's own (web/serve.py, ended by its process id),
// a fresh browser profile, and the terminal read and typed into as a user would.
// CHROMIUM_FLAGS adds flags of its own (a profiler's, say) to the browser's.
'use strict';
const { spawn } = require('child_process');
const fs = require('fs');
const os = require('os');
const path = require('path');

const root = path.resolve(__dirname, '..', '..');
const { chromium } = require(path.join(root, 'web', 'node_modules', 'playwright-core'));

// Serves dist on a free port and opens the page in a new profile; close() ends both.
async function open(dist, viewport = { width: 1200, height: 800 }) {
  const server = spawn('python3', [path.join(root, 'web', 'serve.py'), '0', dist],
                       { stdio: ['ignore', 'pipe', 'ignore'] });
  const url = await new Promise((resolve, reject) => {
    server.stdout.on('data', (data) => {
      const found = /127\.0\.0\.1:(\d+)/.exec(String(data));
      if (found) resolve(`http://127.0.0.1:${found[1]}/`);
    });
    server.on('exit', (code) => reject(new Error(`the page's server ended (${code})`)));
  });
  process.on('exit', () => server.kill());  // also when the script fails half-way
  const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'basic-web-'));
  let context;
  try {
    context = await chromium.launchPersistentContext(profile, {
      executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
      headless: true,
      viewport,
      args: [...(process.env.CHROMIUM_FLAGS ? process.env.CHROMIUM_FLAGS.split(' ') : []), '--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
             '--disable-background-networking', '--disable-component-update', '--disable-sync'],
    });
  } catch (e) {
    server.kill();
    fs.rmSync(profile, { recursive: true, force: true });
    throw e;
  }
  const page = context.pages()[0] || await context.newPage();
  const close = async () => {
    await context.close();
    server.kill();
    fs.rmSync(profile, { recursive: true, force: true });
  };
  return { page, url, close };
}

// Every line the terminal holds, scrollback included, without trailing blanks or lines.
const screen = (page) => page.evaluate(() => {
  const buffer = window.velo.term.buffer.active;
  const lines = [];
  for (let y = 0; y < buffer.length; ++y) lines.push(buffer.getLine(y).translateToString(true));
  return lines.join('\n').replace(/\n+$/, '');
});

const waitForState = (page, state, timeout = 10000) =>
  page.waitForFunction((s) => window.velo && window.velo.state() === s, state, { timeout });

// Does what act does (typing, a click) and waits for the next line read with all its
// output on the screen. wanted is the state that read leaves: ready for the shell's
// prompt, input for a program's.
async function untilRead(page, act, wanted = 'ready', timeout = 10000) {
  const reads = await page.evaluate(() => window.velo.reads);
  await act();
  await page.waitForFunction(([r, s]) => window.velo.reads > r && window.velo.state() === s &&
                                         window.velo.settled(), [reads, wanted], { timeout });
}

// Types a line and returns what the screen gained until the next line read.
async function type(page, line, wanted = 'ready', timeout = 10000) {
  const before = (await screen(page)).length;
  await untilRead(page, async () => {
    await page.keyboard.type(line);
    await page.keyboard.press('Enter');
  }, wanted, timeout);
  return (await screen(page)).slice(before);
}

module.exports = { root, open, screen, waitForState, untilRead, type };
