'use strict';
// Plays sessions with the program in the stand-in desktop, compiled to WebAssembly. Each play is a fresh instance that
// lives from the beginning of its session to the end.

function textOf(id) {
  return document.getElementById(id).textContent;
}
function bytesFrom(base64) {
  return Uint8Array.from(atob(base64), letter => letter.charCodeAt(0));
}
function unpacked(bytes) {
  return new Response(new Blob([bytes]).stream().pipeThrough(new DecompressionStream('gzip')));
}

/** What the program prints to one of its outputs. */
class Printed {
  /** Characters; nobody reads more, and a session can ask for any number of key presses. */
  static limit = 4000000;

  decoder = new TextDecoder('utf-8', {ignoreBOM: true});
  text = '';

  add(bytes) {
    this.text += this.decoder.decode(bytes, {stream: true});
    if (this.text.length > Printed.limit) throw new Error('The session prints more than this page can hold.');
  }
}

class Player {
  static async load() {
    return new Player(await WebAssembly.compile(await unpacked(bytesFrom(textOf('module'))).arrayBuffer()));
  }

  constructor(module) {
    this.module = module;
    this.bundled = Object.fromEntries(
      Object.entries(JSON.parse(textOf('bundle'))).map(([name, base64]) => [name, bytesFrom(base64)]));
    // One memory for all plays, since browsers are slow to take memories back; so one play follows the other.
    this.memory = new WebAssembly.Memory({initial: 64, maximum: 32768});
    this.last = Promise.resolve();
  }

  /**
   * What the command would print to its two outputs, its exit status, and what the last `draw` of the session drew.
   * `defaults` are the bytes or the text of a defaults file. `files` lie beside the session, each under its path, and
   * `bundle` may be one of their folders.
   */
  play(session, options = {}) {
    const played = this.last.then(() => this.run(session, options));
    this.last = played.catch(() => {});
    return played;
  }

  async run(session, {trace = false, defaults = null, files: beside = {}, bundle = '/Tarnwick.app'}) {
    new Uint8Array(this.memory.buffer).fill(0);
    const program = await this.instance();
    const files = program.FS;
    const given = {...this.bundled, ...beside, '/session': session, '/defaults/stored.plist': defaults ?? ''};
    for (const [name, content] of Object.entries(given)) {
      files.mkdirTree(name.slice(0, name.lastIndexOf('/')) || '/');
      files.writeFile(name, content);
    }
    const picture = lastPicture(files);
    const printed = {1: new Printed(), 2: new Printed()};
    const write = files.write;
    files.write = (stream, bytes, from, length, ...rest) => {
      if (!(stream.fd in printed)) return write(stream, bytes, from, length, ...rest);
      printed[stream.fd].add(bytes.subarray(from, from + length));
      return length;
    };
    Object.assign(files.getStream(1), {tty: null, stream_ops: {}}); // a terminal would get each line by itself

    const options = ['--bundle', bundle];
    if (trace) options.push('--trace');
    if (defaults !== null) options.push('--defaults', '/defaults/stored.plist');
    try {
      const status = program.callMain([...options, 'session']);
      return {output: printed[1].text, complaints: printed[2].text, status, picture: picture()};
    } catch (error) {
      throw new Error(printed[2].text || error.message); // a program that stopped has said why
    }
  }

  instance() {
    return new Promise((resolve, reject) => makeTarnwick({
      printErr() {}, // nothing but that the program stopped, which the exception says too
      wasmMemory: this.memory,
      instantiateWasm: (imports, done) => {
        WebAssembly.instantiate(this.module, imports).then(instance => done(instance, this.module), reject);
        return {};
      },
    }).then(resolve, reject));
  }
}

/**
 * Watches what is written from now on, and answers the last of it that is still there when asked: a picture. Defaults do
 * not count, and the copy of the session that the command reads from is gone by then.
 */
function lastPicture(files) {
  const open = files.open;
  const pictures = [];
  files.open = (path, flags, ...rest) => {
    const stream = open(path, flags, ...rest);
    const isWritten = (stream.flags & 3) !== 0 && files.isFile(stream.node.mode);
    if (isWritten && !stream.path.startsWith('/defaults/')) pictures.push(stream.path);
    return stream;
  };
  return () => {
    const last = pictures.filter(path => files.analyzePath(path).exists).pop();
    return last === undefined ? '' : files.readFile(last, {encoding: 'utf8'});
  };
}
