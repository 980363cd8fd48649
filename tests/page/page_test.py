#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""page_test.py VLT BICYCLE: the page of a product, used in a real browser."""
import pathlib
import random
import sys
import tempfile
import time

from browser import Browser, make_page
from selenium.webdriver.common.keys import Keys

SCHEMA = ''.join(f'1, table, {table}\r\n' + ''.join(f'1.1, field, {field}\r\n' for field in fields.split())
                 for table, fields in {'bitm': 'NID CCODE CNAME SIZE', 'bbom': 'NID NPID NCID FCOUNT'}.items()
                 ) + '1, ini\r\n1.1, separator, COMMA\r\n'


def write_database(items, lines):
    folder = pathlib.Path(tempfile.mkdtemp())
    for name, text in {'kdbmain.txt': SCHEMA, 'bitm.txt': rows(items), 'bbom.txt': rows(lines)}.items():
        (folder / name).write_bytes(text.encode())
    return folder


def rows(records):
    return ''.join(','.join(map(str, record)) + '\r\n' for record in records)


def test_tree(browser, vlt, bicycle):
    browser.open(make_page(vlt, bicycle))
    tree = browser.one('#tree')
    assert browser.texts('#tree .row')[0].endswith('BK-700 City bicycle, 28 inch, 7 gears ▤'), \
        browser.texts('#tree .row')
    closed = len(browser.texts('#tree .row'))
    tree.send_keys(Keys.ARROW_DOWN, Keys.ARROW_RIGHT)
    assert len(browser.texts('#tree .row')) > closed
    assert browser.text('#panel h2') == 'FR-100'
    tree.send_keys(Keys.ARROW_LEFT)
    assert len(browser.texts('#tree .row')) == closed
    tree.send_keys(Keys.HOME)
    assert browser.text('#panel h2') == 'BK-700'
    assert browser.texts('#chart .row')[0].startswith('FR-100'), 'by weight, the heaviest first'


def test_search_and_where_used(browser, vlt, bicycle):
    browser.open(make_page(vlt, bicycle))
    browser.one('body').send_keys('/', 'spoke')
    assert all('spoke' in text.lower() for text in browser.texts('#found .row')), browser.texts('#found .row')
    browser.one('#search').send_keys(Keys.ENTER)
    spoke = browser.text('#panel h2')
    browser.one('#found').send_keys(Keys.ENTER)  # reveals it in the tree
    assert browser.text('#tree .row.current .code') == spoke
    code = browser.text('#parents .row .code')
    browser.one('#parents .row .code').click()
    assert browser.text('#panel h2') == code


def test_documents(browser, vlt, bicycle):
    browser.open(make_page(vlt, bicycle))
    for link in range(len(browser.texts('.paper .link'))):
        browser.run('document.querySelectorAll(".paper .link")[arguments[0]].click()', link)
        shown = browser.one('#viewer-content > *')
        if shown.tag_name == 'img':
            wait_for(lambda: browser.run('return arguments[0].naturalWidth', shown) > 0)
        else:
            assert browser.text('#viewer-content > *')
        browser.one('#viewer-close').click()
    browser.open(make_page(vlt, bicycle, '--no-documents'))
    assert not browser.texts('.paper .link') and browser.texts('.paper')


def test_hostile_names_and_cycles(browser, vlt, _):
    bad = '</script><script>document.title="taken"</script>'
    folder = write_database([(1, 'A', 'top', ''), (2, bad, '<img src=x onerror=alert(1)>', 3), (3, 'C', '', '')],
                            [(1, 1, 2, 0.25), (2, 2, 3, 8), (3, 3, 2, 1), (4, 9, 2, 1)])
    browser.open(make_page(vlt, folder, '--title', bad))
    tree = browser.one('#tree')
    tree.send_keys(Keys.ARROW_DOWN, Keys.ARROW_RIGHT, Keys.ARROW_DOWN, Keys.ARROW_RIGHT)
    assert browser.driver.title == bad
    assert browser.texts('#tree .code') == ['A', bad, 'C', bad]
    assert browser.texts('#tree .number')[2:] == ['0.25', '0.25', '8', '2', '1', '2']
    assert browser.texts('#tree .mark') == ['cycle']
    assert 'lead nowhere' in browser.text('#summary')


def test_big(browser, vlt, _):
    chance = random.Random(1)
    items = [(i + 1, f'package-{i}', f'what package {i} is for', chance.randrange(10000)) for i in range(64000)]
    lines = [(i + 1, chance.randrange(64000) + 1, min(int(chance.paretovariate(.5)), 64000), 1) for i in range(276000)]
    start = time.time()
    page = make_page(vlt, write_database(items, lines))
    made = time.time() - start
    browser.open(page)
    ready = browser.run('return performance.now()')
    assert len(browser.texts('#tree .row')) < 100
    typed = browser.run('''return ['p', 'pack', 'package-1', 'for 77', 'zz'].map(query => {
        const start = performance.now();
        search.value = query;
        search.dispatchEvent(new Event('input'));
        return foundElement.offsetHeight && Math.round(performance.now() - start);
    })''')
    print(f'64,000 items, 276,000 lines: made in {made:.1f} s, {page.stat().st_size >> 20} MiB, '
          f'ready in {ready:.0f} ms, searches {typed} ms')


def wait_for(condition, seconds=10):
    end = time.time() + seconds
    while not condition():
        assert time.time() < end
        time.sleep(.05)


if __name__ == '__main__':
    with Browser() as browser:
        for test in [test_tree, test_search_and_where_used, test_documents, test_hostile_names_and_cycles, test_big]:
            test(browser, *sys.argv[1:3])
            assert not browser.complaints(), browser.complaints()
            print(test.__name__, 'passed')
