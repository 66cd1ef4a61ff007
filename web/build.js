// Puts the page together in web/dist: its own files, the terminal widget from
// node_modules, the interpreter's module from the web build, and the examples.
// Usage: node web/build.js [BUILD_FOLDER [DIST_FOLDER]]
'use strict';
const fs = require('fs');
const path = require('path');

const web = __dirname;
const root = path.dirname(web);
const build = path.resolve(process.argv[2] || path.join(root, 'build-web'));
const dist = path.resolve(process.argv[3] || path.join(web, 'dist'));

fs.rmSync(dist, { recursive: true, force: true });
fs.mkdirSync(dist, { recursive: true });
const copy = (from, name) => fs.copyFileSync(from, path.join(dist, name || path.basename(from)));

for (const name of ['index.html', 'style.css', 'main.js', 'worker.js']) copy(path.join(web, name));
for (const name of ['basic.js', 'basic.wasm']) copy(path.join(build, name));
const modules = path.join(web, 'node_modules', '@xterm');
copy(path.join(modules, 'xterm', 'lib', 'xterm.js'));
copy(path.join(modules, 'xterm', 'css', 'xterm.css'));
copy(path.join(modules, 'addon-fit', 'lib', 'addon-fit.js'));

// Each example with the first line of its opening comment, for the page's list.
const examples = fs.readdirSync(path.join(root, 'examples'))
  .filter((name) => name.endsWith('.bas'))
  .sort()
  .map((name) => {
    const text = fs.readFileSync(path.join(root, 'examples', name), 'latin1');
    const comment = text.split('\n').find((line) => /^\s*(\d+\s+REM\b|!)/i.test(line)) || '';
    const title = comment.replace(/^\s*(\d+\s+REM|!)\s*/i, '').trim();
    return { name, title, text };
  });
fs.writeFileSync(path.join(dist, 'examples.json'), JSON.stringify(examples));
console.log(`${path.relative(process.cwd(), dist)}: the page, ${examples.length} examples, basic.wasm ` +
            `${Math.round(fs.statSync(path.join(dist, 'basic.wasm')).size / 1024)} KiB`);
