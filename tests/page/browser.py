# SPDX-License-Identifier: MIT
"""A headless browser for pages that lie on the disk, and the pages of `vlt bom html`."""
import pathlib
import subprocess
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

FLAGS = ('--headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking '
         '--disable-component-update --disable-sync --window-size=1300,850').split()


class Browser:
    def __init__(self):
        options = webdriver.ChromeOptions()
        for flag in FLAGS:
            options.add_argument(flag)
        options.set_capability('goog:loggingPrefs', {'browser': 'ALL'})
        self.driver = webdriver.Chrome(options=options, service=Service('/usr/bin/chromedriver'))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.driver.quit()

    def open(self, page):
        self.driver.get(pathlib.Path(page).resolve().as_uri())
        assert self.run('return document.documentElement.dataset.ready') == 'true'

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def texts(self, selector):
        """The texts of elements in their order on the screen, read at once: a row that is drawn anew is another one."""
        found = self.run('return [...document.querySelectorAll(arguments[0])].map(e => e.innerText)', selector)
        return [' '.join(text.split()) for text in found]

    def text(self, selector):
        return self.texts(selector)[0]

    def complaints(self):
        return [entry['message'] for entry in self.driver.get_log('browser')]


def make_page(vlt, database, *options):
    page = pathlib.Path(tempfile.mkdtemp()) / 'product.html'
    subprocess.run([vlt, 'bom', 'html', database, '-o', page, *options], check=True)
    return page
