// The web page's end-to-end test in headless Chromium: the page loads to READY,
// a typed program is listed and run with an INPUT answered, keys of the line
// editor and Ctrl+C work, colours reach the terminal, an example loaded with a
// click draws the same picture as on the desktop, a SAVEd program survives a
// reload and downloads, an uploaded one runs, and SLEEP and ENTER's time limit wait
// without holding up the page. Usage: node tests/web/page_test.js [DIST_FOLDER]
'use strict';
const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { root, open, screen, waitForState, untilRead, type } = require('./browser');

const dist = path.resolve(process.argv[2] || path.join(root, 'web', 'dist'));

const kLoadLimitMs = 1000;

let passed = 0, failed = 0;
async function check(name, body) {
  try {
    await body();
    ++passed;
    console.log(`ok - ${name}`);
  } catch (e) {
    ++failed;
    console.log(`FAIL - ${name}\n${String(e.stack || e).replace(/^/gm, '    ')}`);
  }
}

function readPpm(file) {
  const data = fs.readFileSync(file);
  const header = /^P6\s+(\d+)\s+(\d+)\s+255\s/.exec(data.toString('latin1', 0, 32));
  return { width: +header[1], height: +header[2], rgb: data.subarray(header[0].length) };
}

async function canvasRgb(page) {
  const pixels = await page.evaluate(() => {
    const canvas = document.querySelector('.window canvas');
    const data = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    const rgb = [];
    for (let i = 0; i < data.length; i += 4) rgb.push(data[i], data[i + 1], data[i + 2]);
    return { width: canvas.width, height: canvas.height, rgb };
  });
  return { ...pixels, rgb: Buffer.from(pixels.rgb) };
}

async function main() {
  const { page, url, close } = await open(dist);
  const errors = [];
  page.on('pageerror', (e) => errors.push(e.message));
  try {
    await check('the page loads to READY within a second', async () => {
      await page.goto(url);
      await waitForState(page, 'ready');
      await page.waitForFunction(() => window.velo.settled());
      assert.match(await screen(page), /Velo Basic V0\.94\.0\.154(.|\n)*\nREADY$/);
      const readyAt = await page.evaluate(() => window.velo.readyAt);
      console.log(`    load to READY: ${Math.round(readyAt)} ms`);
      assert.ok(readyAt < kLoadLimitMs, `READY after ${readyAt} ms`);
    });

    await check('a typed program lists as entered', async () => {
      for (const line of ['10 PRINT "HELLO"', '20 INPUT "NAME",N$', '30 PRINT "HI ";N$;LEN(N$)',
                          '40 END'])
        await type(page, line);
      assert.strictEqual(await type(page, 'LIST'), '\nLIST\n\n   10   PRINT "HELLO"\n' +
                         '   20   INPUT "NAME",N$\n   30   PRINT "HI ";N$;LEN(N$)\n   40   END');
    });

    await check('F3 copies the last line; Up brings back the one before, Escape drops it', async () => {
      await untilRead(page, async () => {
        await page.keyboard.press('F3');
        await page.keyboard.press('Enter');
      });
      assert.match(await screen(page), /LIST\n\n   10   PRINT "HELLO"(.|\n)*LIST\n\n   10   PRINT "HELLO"/);
      await page.keyboard.press('ArrowUp');
      await page.keyboard.press('Escape');
      await type(page, 'WIDTH');
      assert.match(await screen(page), /\nLIST@\nWIDTH\nWidth is 72$/);
    });

    await check('RUN asks for INPUT and prints the answer', async () => {
      const before = (await screen(page)).length;
      assert.strictEqual(await type(page, 'RUN', 'input'), '\nRUN\nHELLO\nNAME');
      await type(page, 'ADA');
      assert.match((await screen(page)).slice(before), /NAMEADA\nHI ADA 3\s*\n\nDONE$/);
    });

    await check('colours reach the terminal', async () => {
      await type(page, 'PRINT CHR$(27);"[31;1mRED";CHR$(27);"[0;37m"');
      const colour = await page.evaluate(() => {
        const buffer = window.velo.term.buffer.active;
        for (let y = buffer.length - 1; y >= 0; --y) {
          const line = buffer.getLine(y);
          const x = line.translateToString().indexOf('RED');
          if (x >= 0) return [line.getCell(x).getFgColor(), line.getCell(x).isFgPalette()];
        }
        return [];
      });
      assert.deepStrictEqual(colour, [9, true]);  // bright red
    });

    await check('Ctrl+C breaks a running program', async () => {
      await type(page, 'NEW');
      await type(page, '10 GOTO 10');
      await page.keyboard.type('RUN');
      await page.keyboard.press('Enter');
      await waitForState(page, 'running');
      await untilRead(page, () => page.keyboard.press('Control+C'));
      assert.match(await screen(page), /\nRUN\n\nBREAK in line 10\n*$/);
    });

    await check('an example loaded with a click draws its picture in a canvas', async () => {
      await untilRead(page, () => page.click('#examples button.load:text("rose.bas")'));
      assert.match(await screen(page), /\nGET \/examples\/rose\.bas\n*$/);
      assert.match(await type(page, 'RUN', 'input'), /Press Enter to close the window$/);
      assert.strictEqual(await page.textContent('.window .title'), 'Velo Basic Test Window\u00d7');
      const shown = await canvasRgb(page);
      const expected = readPpm(path.join(root, 'examples', 'rose.ppm'));
      assert.deepStrictEqual([shown.width, shown.height], [expected.width, expected.height]);
      assert.ok(shown.rgb.equals(expected.rgb), 'the canvas differs from examples/rose.ppm');
      assert.match(await type(page, ''), /\n\nDONE$/);
    });

    await check('the width follows the terminal widget', async () => {
      await page.setViewportSize({ width: 700, height: 600 });
      await page.waitForFunction(() => window.velo.term.cols < 60);
      const cols = await page.evaluate(() => window.velo.term.cols);
      const text = await type(page, `PRINT "${'X'.repeat(60)}"`);
      assert.ok(text.includes('\n' + 'X'.repeat(cols) + '\n' + 'X'.repeat(60 - cols)), text);
      await page.setViewportSize({ width: 1200, height: 800 });
    });

    await check('a SAVEd program is kept across a reload and comes back with GET', async () => {
      await type(page, 'NEW');
      await type(page, '10 PRINT "KEPT"');
      await type(page, 'SAVE KEPT.BAS');
      await page.waitForSelector('#saved button.load:text("KEPT.BAS")');
      await page.reload();
      await waitForState(page, 'ready');
      await page.waitForSelector('#saved button.load:text("KEPT.BAS")');
      await type(page, 'GET KEPT.BAS');
      assert.match(await type(page, 'RUN'), /\nKEPT\n\nDONE$/);
    });

    await check('an uploaded file can be loaded and run', async () => {
      await page.setInputFiles('#upload', { name: 'up.bas', mimeType: 'text/plain',
                                            buffer: Buffer.from('10 PRINT "UPLOADED";2+2\n') });
      await page.waitForSelector('#saved button.load:text("up.bas")');
      await untilRead(page, () => page.click('#saved button.load:text("up.bas")'));
      assert.match(await type(page, 'RUN'), /\nUPLOADED 4\s*\n\nDONE$/);
    });

    await check('a saved file downloads as it was saved', async () => {
      const [download] = await Promise.all([
        page.waitForEvent('download'),
        page.click('#saved li:has(button.load:text("KEPT.BAS")) button[title^="Download"]'),
      ]);
      assert.strictEqual(download.suggestedFilename(), 'KEPT.BAS');
      assert.strictEqual(fs.readFileSync(await download.path(), 'latin1'), '   10 PRINT "KEPT"\n');
    });

    await check('SLEEP and ENTER\'s time limit wait while the page goes on', async () => {
      await type(page, 'NEW');
      for (const line of ['10 SLEEP 500', '20 ENTER 1,T,A$', '30 PRINT "T=";T']) await type(page, line);
      const started = Date.now();
      const run = type(page, 'RUN');
      await page.waitForTimeout(200);
      const asked = Date.now();
      await page.evaluate(() => document.title);
      assert.ok(Date.now() - asked < 200, 'the page did not answer while the program slept');
      assert.match(await run, /\nT=-256\s*\n\nDONE$/);
      assert.ok(Date.now() - started >= 1400, `the run took ${Date.now() - started} ms`);
    });

    await check('BYE ends the session and Enter starts another with the same files', async () => {
      await page.keyboard.type('BYE');
      await page.keyboard.press('Enter');
      await waitForState(page, 'ended');
      await page.waitForFunction(() => window.velo.settled());
      assert.match(await screen(page), /MINUTES OF TERMINAL TIME\n+\[The interpreter ended\. Press Enter to start again\.\]$/);
      await untilRead(page, () => page.keyboard.press('Enter'));
      assert.match(await screen(page), /Press Enter to start again\.\]\n+Velo Basic V0\.94\.0\.154(.|\n)*READY$/);
      await type(page, 'GET KEPT.BAS');
      assert.match(await type(page, 'LIST'), /KEPT\.BAS\n\n   10   PRINT "KEPT"$/);
    });

    await check('the page raised no script error', async () => {
      assert.deepStrictEqual(errors, []);
    });
  } finally {
    await close();
  }
  console.log(`web: ${passed} passed, ${failed} failed`);
  process.exit(failed ? 1 : 0);
}

main().catch((e) => {
  console.error(e);
  process.exit(1);
});
