'use strict';
// The visitor's keyboard. A key goes by its place, as in the program: `code` names what a US keyboard has there,
// whatever is printed on the visitor's.

const onMac = /Mac/.test(navigator.platform);

const keyNames = {
  Enter: 'return', Backspace: 'delete', Delete: 'forwarddelete', Space: 'space', Escape: 'escape', Quote: 'quote',
  ArrowLeft: 'left', ArrowRight: 'right', ArrowUp: 'up', ArrowDown: 'down', Home: 'home', End: 'end',
  PageUp: 'pageup', PageDown: 'pagedown', Minus: 'minus', Equal: 'equal', BracketLeft: 'leftbracket',
  BracketRight: 'rightbracket', Backslash: 'backslash', Semicolon: 'semicolon', Comma: 'comma', Period: 'period',
  Slash: 'slash', Backquote: 'grave',
};

/** The key as a session calls it, `ctrl+shift+left`; nothing for modifiers alone and for keys without a name there. */
function keyOf(event) {
  const plain = /^(?:Key([A-Z])|Digit([0-9])|(F(?:1?[0-9]|20)))$/.exec(event.code);
  const name = plain ? plain.slice(1).find(Boolean).toLowerCase() : keyNames[event.code];
  if (!name) return null;
  const held = [
    [onMac ? 'cmd' : 'win', event.metaKey],
    ['ctrl', event.ctrlKey],
    [onMac ? 'option' : 'alt', event.altKey || event.getModifierState('AltGraph')],
    ['shift', event.shiftKey],
    ['caps', event.getModifierState('CapsLock')],
  ];
  return [...held.filter(([, isHeld]) => isHeld).map(([modifier]) => modifier), name].join('+');
}

/** `ctrl+forwarddelete` for people: Ctrl+Forward Delete. */
function keyLabel(key) {
  return key.split('+').map(part => part === 'forwarddelete' ? 'Forward Delete' : part[0].toUpperCase() + part.slice(1))
    .join('+');
}
