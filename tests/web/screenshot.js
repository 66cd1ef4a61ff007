// The README's picture of the page: two examples run, one of them drawing.
// Usage: node tests/web/screenshot.js [DIST_FOLDER [PNG_FILE]]
'use strict';
const path = require('path');
const { root, open, waitForState, untilRead, type } = require('./browser');

(async () => {
  const dist = path.resolve(process.argv[2] || path.join(root, 'web', 'dist'));
  const png = path.resolve(process.argv[3] || path.join(root, 'docs', 'web-page.png'));
  const { page, url, close } = await open(dist, { width: 1100, height: 640 });
  try {
    await page.goto(url);
    await waitForState(page, 'ready');
    await untilRead(page, () => page.click('#examples button.load:text("report.bas")'));
    await type(page, 'RUN');
    await untilRead(page, () => page.click('#examples button.load:text("spinner.bas")'));
    await type(page, 'RUN', 'input', 60000);
    await page.evaluate(() => window.velo.term.blur());
    await page.screenshot({ path: png });
    console.log(`wrote ${path.relative(process.cwd(), png)}`);
  } finally {
    await close();
  }
})().catch((e) => {
  console.error(e);
  process.exit(1);
});
