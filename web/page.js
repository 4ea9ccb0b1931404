'use strict';
// The page keeps what the visitor did as the commands of a session. After each action it plays the session anew from
// its beginning and shows how it ends: nothing stays alive in between, and any action can be taken back.

const $ = id => document.getElementById(id);

const applications = ['Editor', 'Finder', 'Mail', 'Terminal'];
/** Keys that browsers or systems are known to keep, and some for visitors without a keyboard. */
const lockKey = onMac ? 'cmd+l' : 'win+l';
const offeredKeys =
  ['ctrl+c', 'ctrl+n', 'ctrl+t', 'ctrl+w', 'ctrl+y', 'ctrl+left', lockKey, 'shift+2', 'f2', 'forwarddelete'];
const shownRows = 200;

/** The desktop before the visitor does anything. */
function beginning() {
  const screen = matchMedia('(max-width: 40rem)').matches ? 'screen 480 640' : 'screen 760 620';
  return [screen, 'app Mail com.example.mail', 'app Terminal com.example.terminal', 'launch'];
}
const isPreparation = command => /^\s*(screen|app|launch|trust|taps|draw)\b/.test(command);
const isWaiting = command => /^\s*wait\b/.test(command);

/** What the command said, one row for each thing that the visitor did: the command and what came of it. */
function historyFrom(output) {
  const rows = [];
  let row = null;
  for (const line of output.split('\n').slice(0, -1)) {
    if (line.startsWith('    ')) row?.facts.push(line.trim());
    else if (isPreparation(line)) row = null;
    else if (!isWaiting(line)) rows.push(row = {command: line.trim(), facts: []});
  }
  return rows;
}

/** Of a key's press and its release people want to read one. */
function factsToRead({command, facts}) {
  if (command === 'show menu') return [];
  const presses = facts.filter(fact => !/ released(,|$)/.test(fact));
  return (presses.length > 0 ? presses : facts)
    .map(fact => fact.replace(/^.* pressed, and (?=no application)/, '').replace(/ pressed$/, ''));
}

/** A command for people, in parts: words, and keys in an array of their own. */
function deedOf(command) {
  const [, verb, rest = ''] = /^(\S+)\s*(.*)$/.exec(command);
  const title = rest.replace(/^"(.*)"/, (all, inside) => inside.replace(/\\(.)/g, '$1'));
  switch (verb) {
    case 'press': return [[keyLabel(rest.split(/\s/)[0])], rest.includes(' ') ? ` ${rest.split(/\s+/)[1]} times` : ''];
    case 'front': return [`brought ${title} to the front`];
    case 'show': return [title === 'menu' ? 'opened Tarnwick’s menu' : command];
    case 'menu': return [`chose ${title}`];
    case 'choose': return [`chose ${targets.choose.label(title)}`];
    case 'click': return [`clicked ${title}`];
    case 'close': return ['closed the window'];
    case 'cancel': return ['clicked Cancel'];
    default: return [command];
  }
}

/** The outcome with its keys apart: `Editor receives`, [`Cmd+C`]. */
function outcomeOf(fact) {
  const [, before, key] = /^(.* (?:receives|posts) )([A-Z0-9].*)$/.exec(fact) ?? [null, fact, null];
  return key === null ? [before] : [before, [key]];
}

function element(tag, ...parts) {
  const made = document.createElement(tag);
  made.append(...parts.map(part => Array.isArray(part) ? element('kbd', ...part) : part));
  return made;
}

async function linkOf(text) {
  const packed = new Blob([text]).stream().pipeThrough(new CompressionStream('gzip'));
  const bytes = new Uint8Array(await new Response(packed).arrayBuffer());
  const base64 = btoa(Array.from(bytes, byte => String.fromCharCode(byte)).join(''));
  return `#${base64.replaceAll('+', '-').replaceAll('/', '_').replaceAll('=', '')}`;
}
async function sessionFrom(link) {
  try {
    return await unpacked(bytesFrom(link.slice(1).replaceAll('-', '+').replaceAll('_', '/'))).text();
  } catch {
    throw new Error('The link to this page is damaged: its session cannot be read.');
  }
}

class Page {
  constructor(player) {
    this.player = player;
    this.commands = beginning();
    this.shown = this.commands; // as they were when the picture was drawn
    this.picture = new Picture($('screen'), command => this.act(command));
    this.isBusy = false;
    this.listen();
  }

  /** What a click sets off may take a moment: the Finder gets its keys after one. */
  act(command) {
    this.commands.push(command, ...(command.startsWith('click ') ? ['wait 0.1'] : []));
    return this.refresh();
  }
  undo() {
    while (this.commands.length > 0 && isWaiting(this.commands.at(-1))) this.commands.pop();
    this.commands.pop();
    return this.refresh();
  }
  again() {
    this.commands = beginning();
    return this.refresh();
  }
  session() {
    return this.commands.map(command => `${command}\n`).join('');
  }

  /** Starts with the session of the page's link, if it has one. */
  async start() {
    let complaint = '';
    try {
      if (location.hash.length > 1) {
        const session = await sessionFrom(location.hash);
        const {status, complaints} = await this.player.play(session);
        if (status !== 0) throw new Error(`The link’s session cannot be played. ${complaints}`);
        this.commands = session.replace(/\n$/, '').split('\n');
      }
    } catch (error) {
      complaint = error.message;
    }
    await this.refresh();
    if (complaint) $('fault').textContent = complaint;
  }

  /** Plays until the picture is that of the last command: while one play runs, the visitor may do more. */
  async refresh() {
    this.isStale = true;
    if (this.isBusy) return;
    this.isBusy = true;
    while (this.isStale) {
      this.isStale = false;
      await this.playAndShow();
    }
    this.isBusy = false;
  }

  /** What cannot be played is told and taken back. */
  async playAndShow() {
    const commands = [...this.commands];
    try {
      const {output, complaints, status, picture} = await this.player.play(`${this.session()}draw /screen.svg\n`);
      if (status !== 0) throw new Error(complaints);
      $('fault').textContent = '';
      this.picture.show(picture);
      this.shown = commands;
      this.tell(historyFrom(output));
    } catch (error) {
      $('fault').textContent = error.message;
      this.commands = [...this.shown];
    }
  }

  tell(rows) {
    const told = rows.map(row => ({deed: deedOf(row.command), outcomes: factsToRead(row).map(outcomeOf)}));
    const last = told.at(-1);
    $('latest').replaceChildren(...last
      ? [element('span', ...last.deed),
        ...last.outcomes.flatMap((outcome, at) => [at ? ', ' : ' → ', element('span', ...outcome)])]
      : ['Press Ctrl+C, and the Editor gets Cmd+C.']);
    $('history').querySelector('tbody').replaceChildren(...told.slice(-shownRows).reverse().map(({deed, outcomes}) =>
      element('tr', element('td', ...deed),
        element('td', element('ul', ...outcomes.map(outcome => element('li', ...outcome)))))));
    $('history').querySelector('caption').textContent =
      told.length > shownRows ? `The last ${shownRows} of ${told.length} actions` : '';

    $('session').value = this.session();
    $('copied').textContent = '';
    $('undo').disabled = this.commands.length === 0 || this.commands.at(-1) === 'launch';
    const front = this.picture.frontmost();
    for (const button of $('front').children) button.setAttribute('aria-pressed', button.textContent === front);
    this.where();
  }

  /** Where keys go, and whether they go there now. */
  where() {
    const front = this.picture.frontmost() ?? 'no application';
    $('where').textContent = document.activeElement === $('screen')
      ? `Keys go to ${front}. Tab leaves the desktop.`
      : `Click the desktop, and your keys go to ${front}.`;
    $('screen').setAttribute('aria-label', `Desktop, ${front} in front`);
  }

  listen() {
    const button = (place, label, action) => {
      const made = element('button', label);
      this.whenPressed(made, action);
      $(place).append(made);
    };
    for (const name of applications) button('front', name, () => this.act(`front ${name}`));
    for (const key of offeredKeys) button('keys', keyLabel(key), () => this.act(`press ${key}`));
    this.whenPressed($('undo'), () => this.undo());
    this.whenPressed($('again'), () => this.again());
    $('copySession').addEventListener('click', () => this.copy(this.session(), 'The session'));
    $('copyLink').addEventListener('click', async () =>
      this.copy(location.href.replace(/#.*/, '') + await linkOf(this.session()), 'The link'));

    $('screen').addEventListener('keydown', event => this.key(event));
    for (const change of ['focus', 'blur']) $('screen').addEventListener(change, () => this.where());
    window.addEventListener('hashchange', () => this.start());
  }

  /** A click takes the keyboard back to the desktop; who works the button with keys stays there. */
  whenPressed(button, action) {
    button.addEventListener('click', event => {
      if (event.detail > 0) $('screen').focus({preventScroll: true});
      action();
    });
  }

  key(event) {
    if (event.key === 'Tab' || event.isComposing) return;
    if (!event.repeat && this.picture.takesKey(event)) {
      event.preventDefault();
      return;
    }
    const key = keyOf(event);
    if (key === null) return;
    event.preventDefault();
    if (!event.repeat) this.act(`press ${key}`);
  }

  async copy(text, what) {
    try {
      await navigator.clipboard.writeText(text);
      $('copied').textContent = `${what} is on the clipboard.`;
    } catch {
      $('session').value = text;
      $('session').select();
      $('copied').textContent = 'This browser does not let the page copy: the text above is selected.';
    }
  }
}

/** What the page says of a program that has not started gives way to the program, or to more about why. */
async function begin() {
  const loading = Player.load();
  window.tarnwick = {play: async (session, options) => (await loading).play(session, options)};
  try {
    await window.tarnwick.play('');
  } catch (error) {
    $('fault').append(` (${error.message})`);
    return;
  } finally {
    $('fault').classList.remove('early');
  }
  document.querySelector('main').hidden = false;
  await new Page(await loading).start();
  $('screen').focus({preventScroll: true});
}

begin();
