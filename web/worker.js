// The interpreter's worker. The page starts it with the saved files, the examples
// and the terminal's size; basic.js then runs the shell here until BYE, waiting
// for keys on memory it shares with the page (web/host.js carries the messages).
self.onmessage = (event) => {
  if (event.data.t !== 'start') return;
  self.onmessage = null;
  self.Module = { veloStart: event.data };
  importScripts('basic.js');
};
