// SPDX-License-Identifier: MIT
// Documents inside the page: pictures and text are shown, everything else is saved by a click.

const PICTURES = {svg: 'image/svg+xml', png: 'image/png', jpg: 'image/jpeg', jpeg: 'image/jpeg', gif: 'image/gif',
                  bmp: 'image/bmp', webp: 'image/webp'};
const TEXTS = ['txt', 'csv', 'log', 'md', 'json', 'xml', 'htm', 'html', 'ini', 'tsv', 'nc', 'step', 'stp', 'dxf'];

function ending(name) { return name.slice(name.lastIndexOf('.') + 1).toLowerCase(); }

function documentBytes(paper) {
  return Uint8Array.from(atob(document.getElementById(paper.element).textContent), unit => unit.charCodeAt(0));
}

function documentUrl(paper) {
  return URL.createObjectURL(new Blob([documentBytes(paper)], {type: PICTURES[ending(paper.name)] ?? 'application/octet-stream'}));
}

/// Saved by a click: the address of the bytes is made then, and given back soon after.
function saveLink(paper, text) {
  const save = event => {
    event.target.href = documentUrl(paper);
    setTimeout(() => URL.revokeObjectURL(event.target.href), 60000);
  };
  return make('a', {download: paper.name.split(/[\\/]/).pop(), href: '#', onclick: save}, text);
}

function documentLink(paper) {
  if (!paper.element) return make('span', {class: 'empty'}, `${paper.name} (${paper.missing})`);
  if (!(ending(paper.name) in PICTURES) && !TEXTS.includes(ending(paper.name))) return saveLink(paper, 'save ' + paper.name);
  return make('button', {class: 'link', onclick: () => openDocument(paper)}, paper.name);
}

function openDocument(paper) {
  const viewer = document.getElementById('viewer');
  const content = document.getElementById('viewer-content');
  document.getElementById('viewer-name').textContent = paper.name;
  const save = saveLink(paper, 'save');
  save.id = 'viewer-save';
  document.getElementById('viewer-save').replaceWith(save);
  if (ending(paper.name) in PICTURES) {
    const url = documentUrl(paper);
    const release = () => URL.revokeObjectURL(url);
    content.replaceChildren(make('img', {src: url, alt: paper.name, onload: release, onerror: release}));
  } else {
    content.replaceChildren(make('pre', {}, new TextDecoder().decode(documentBytes(paper))));
  }
  viewer.showModal();
}
