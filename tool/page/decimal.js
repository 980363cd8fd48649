// SPDX-License-Identifier: MIT
// Quantities are decimal text; they are multiplied exactly, as whole numbers with a count of decimals.
'use strict';

/// The number of a text such as "4" or "0.25"; null when it is none.
function parseDecimal(text) {
  const parts = /^\s*([+-]?)(\d*)(?:\.(\d*))?\s*$/.exec(text ?? '');
  if (!parts || !(parts[2] || parts[3])) return null;
  const decimals = parts[3] ?? '';
  return {digits: BigInt(parts[1] === '-' ? '-' + (parts[2] + decimals) : parts[2] + decimals), scale: decimals.length};
}

function multiply(a, b) { return {digits: a.digits * b.digits, scale: a.scale + b.scale}; }

/// Without trailing zeros.
function formatDecimal(number) {
  const sign = number.digits < 0n ? '-' : '';
  const digits = String(number.digits < 0n ? -number.digits : number.digits).padStart(number.scale + 1, '0');
  const whole = digits.slice(0, digits.length - number.scale);
  const decimals = digits.slice(digits.length - number.scale).replace(/0+$/, '');
  return sign + whole + (decimals ? '.' + decimals : '');
}

const ONE = {digits: 1n, scale: 0};
