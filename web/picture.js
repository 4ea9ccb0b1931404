'use strict';
// The picture of the screen, and what the visitor can act on in it: the groups that the drawing marks with `data-`
// attributes.

/** For each kind of target its role, its name to the visitor, and the command that acts on it. */
const targets = {
  status: {role: 'button', label: name => `${name} menu`, command: () => 'show menu'},
  entry: {role: 'menuitem', command: name => `menu ${quoted(name)}`},
  button: {role: 'button', command: (name, row) => `click ${quoted(name)}${row > 1 ? ` ${row}` : ''}`},
  checkbox: {role: 'checkbox', command: (name, row) => `click ${quoted(name)}${row > 1 ? ` ${row}` : ''}`},
  choose: {role: 'button', label: path => path.replace(/^.*\/|\.app$/g, ''), command: path => `choose ${quoted(path)}`},
  close: {role: 'button', label: name => `Close ${name}`, command: () => 'close'},
  cancel: {role: 'button', command: () => 'cancel'},
};
/** What targets stand in; what came up last takes the keyboard's focus, but for the window. */
const surroundings = {window: 'group', menu: 'menu', alert: 'alertdialog', panel: 'dialog'};

const selectorOf = kinds => Object.keys(kinds).map(kind => `[data-${kind}]`).join();
const kindOf = (element, kinds) => Object.keys(kinds).find(kind => kind in element.dataset);

/** A word of a session. */
function quoted(word) {
  return `"${word.replace(/["\\]/g, '\\$&')}"`;
}

const pictureStyle = `
  svg { display: block; width: 100%; height: auto; }
  ${selectorOf(targets)} { cursor: default; outline: none; }
  :focus-visible > .target { stroke: var(--text); stroke-width: 3; }
  [data-scroll] { touch-action: none; }`;

class Picture {
  /** `act` is called with the command by which the visitor acts. */
  constructor(screen, act) {
    this.screen = screen;
    this.act = act;
    this.root = screen.attachShadow({mode: 'open'});
    this.scrolled = 0;
    this.opener = null; // the command of what had the keyboard's focus before something came up
    this.root.addEventListener('click', event => this.click(event));
    this.root.addEventListener('focusin', event => this.reveal(event.target));
    // Not on the root, where Chromium does not look before it scrolls the page.
    screen.addEventListener('wheel', event => this.wheel(event), {passive: false});
    this.root.addEventListener('pointerdown', event => this.grab(event));
  }

  /** Shows a new picture for the old one. The keyboard's focus stays where it was, or goes to what came up. */
  show(svg) {
    const focused = this.root.activeElement && this.commandOf(this.root.activeElement);
    const hadFocus = document.activeElement === this.screen;
    const before = this.front();
    const drawn = document.adoptNode(new DOMParser().parseFromString(svg, 'image/svg+xml').documentElement);
    const style = document.createElement('style');
    style.textContent = pictureStyle;
    this.root.replaceChildren(style, drawn);
    this.describe();
    this.scrollTo(this.scrolled);
    if (!hadFocus) return;
    const find = command => this.targets().find(target => this.commandOf(target) === command);
    const front = this.front();
    if (front !== before && before === null) this.opener = focused;
    const place = front !== before ? this.firstInFront() ?? find(this.opener) : find(focused);
    (place ?? this.screen).focus({preventScroll: true});
  }

  /** The menu, alert or panel that is in front of all else, by its name. */
  front() {
    return this.root.querySelector('[data-menu],[data-alert],[data-panel]')?.getAttribute('aria-label') ?? null;
  }
  /** Whose keys the desktop takes the visitor's for; nothing if nobody's. */
  frontmost() {
    return this.root.querySelector('[data-front]')?.dataset.front ?? null;
  }
  /** What has the focus when something came up: of an alert its default button, which is drawn first. */
  firstInFront() {
    return this.root.querySelector('[role=menu] [role],[role=alertdialog] [role],[role=dialog] [role]');
  }
  menuIsOpen() {
    return this.root.querySelector('[data-menu]') !== null;
  }
  targets() {
    return [...this.root.querySelectorAll(selectorOf(targets))];
  }

  /** Gives everything that is marked a role, a name and, where one can act on it, a place in the tab order. */
  describe() {
    for (const element of this.root.querySelectorAll(selectorOf(surroundings))) {
      const kind = kindOf(element, surroundings);
      element.setAttribute('role', surroundings[kind]);
      element.setAttribute('aria-label', element.dataset[kind]);
    }
    for (const element of this.targets()) {
      const kind = kindOf(element, targets);
      const name = element.dataset[kind];
      const hasTwins = this.twins(element).length > 1;
      element.setAttribute('role', targets[kind].role);
      element.setAttribute('tabindex', '0');
      const label = targets[kind].label ?? (title => title);
      element.setAttribute('aria-label', hasTwins ? `${name} ${textBefore(element)}` : label(name));
      if (kind === 'checkbox') element.setAttribute('aria-checked', element.querySelector('.checkMark') !== null);
      if (kind === 'status') {
        element.setAttribute('aria-haspopup', 'menu');
        element.setAttribute('aria-expanded', this.menuIsOpen());
      }
    }
  }

  /** The targets of this one's kind and name, itself included. */
  twins(element) {
    const kind = kindOf(element, targets);
    return this.targets().filter(other => other.dataset[kind] === element.dataset[kind]);
  }

  commandOf(element) {
    const kind = kindOf(element, targets);
    return targets[kind].command(element.dataset[kind], this.twins(element).indexOf(element) + 1);
  }

  /** Acts on a target. The menu's sign also closes the menu; after one of its entries the whole desktop has the focus. */
  choose(element) {
    const kind = kindOf(element, targets);
    if (kind === 'entry') this.opener = null;
    if (kind === 'status' && this.menuIsOpen()) this.closeMenu();
    else this.act(this.commandOf(element));
  }
  closeMenu() {
    this.act('wait 0');
  }
  click(event) {
    const element = event.target.closest(selectorOf(targets));
    if (element) this.choose(element);
    else if (this.menuIsOpen() && !event.target.closest('[data-menu]')) this.closeMenu();
  }

  /** Whether a key was the picture's own, for the target that has the focus. */
  takesKey(event) {
    const focused = this.root.activeElement;
    if (!focused || event.ctrlKey || event.altKey || event.metaKey) return false;
    if (event.key === 'Enter' || event.key === ' ') {
      this.choose(focused);
    } else if (event.key === 'Escape' && this.menuIsOpen()) {
      this.closeMenu();
    } else if (/^Arrow(Up|Down)$/.test(event.key) && kindOf(focused, targets) === 'entry') {
      const entries = this.targets().filter(target => kindOf(target, targets) === 'entry');
      const next = entries.indexOf(focused) + (event.key === 'ArrowDown' ? 1 : -1);
      entries.at(next % entries.length).focus();
    } else {
      return false;
    }
    return true;
  }

  // The program's window scrolls by moving what the drawing has drawn whole.

  document() {
    return this.root.querySelector('[data-scroll]');
  }
  /** Pages' pixels for one point of the picture. */
  scale() {
    const svg = this.root.querySelector('svg');
    return svg.getBoundingClientRect().width / svg.viewBox.baseVal.width;
  }
  scrollTo(points) {
    const scrolled = this.document();
    if (!scrolled) return;
    const hidden = Number(scrolled.dataset.scroll);
    this.scrolled = Math.min(Math.max(points, 0), hidden);
    scrolled.setAttribute('transform', `translate(0 ${-this.scrolled})`);
    const scroller = this.root.querySelector('[data-travel]');
    scroller?.setAttribute('transform', `translate(0 ${this.scrolled / hidden * scroller.dataset.travel})`);
  }
  wheel(event) {
    if (!this.document() || !event.composedPath()[0].closest('[data-window]') || event.ctrlKey) return;
    const before = this.scrolled;
    this.scrollTo(before + event.deltaY * (event.deltaMode === 0 ? 1 : 16) / this.scale());
    if (this.scrolled !== before) event.preventDefault();
  }
  /** A drag of the scroller moves it; a finger moves the document itself. */
  grab(event) {
    const scroller = event.target.closest('[data-travel]');
    const isFinger = event.pointerType === 'touch' && event.target.closest('[data-scroll]');
    if (!scroller && !isFinger) return;
    const from = this.scrolled;
    const ratio = scroller ? this.document().dataset.scroll / scroller.dataset.travel : -1;
    const drag = new AbortController();
    const move = moved => this.scrollTo(from + ratio * (moved.clientY - event.clientY) / this.scale());
    window.addEventListener('pointermove', move, {signal: drag.signal});
    for (const end of ['pointerup', 'pointercancel'])
      window.addEventListener(end, () => drag.abort(), {signal: drag.signal});
    if (scroller) event.preventDefault();
  }
  /** Scrolls so that the target is seen, and what is next to it: below a button is the row that it adds. */
  reveal(element) {
    const scrolled = this.document();
    if (!scrolled?.contains(element)) return;
    const clip = scrolled.parentNode.getAttribute('clip-path').slice('url('.length, -1);
    const seen = this.root.querySelector(`${clip} rect`);
    const frame = element.getBBox();
    const top = frame.y - seen.y.baseVal.value;
    const bottom = top + frame.height - seen.height.baseVal.value;
    this.scrollTo(Math.min(Math.max(this.scrolled, bottom + 40), top - 40));
  }
}

/** The text that is drawn before an element: what a row's button is about. */
function textBefore(element) {
  const isBefore = text => text.compareDocumentPosition(element) & Node.DOCUMENT_POSITION_FOLLOWING;
  return [...element.ownerSVGElement.querySelectorAll('text')].filter(isBefore).at(-1)?.textContent ?? '';
}
