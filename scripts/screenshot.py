#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""screenshot.py VLT: makes docs/product-page.png, the picture of the bicycle's page that the README shows."""
import pathlib
import sys

root = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(root / 'tests' / 'page'))
from browser import Browser, make_page  # noqa: E402
from selenium.webdriver.common.keys import Keys  # noqa: E402

with Browser() as browser:
    browser.open(make_page(sys.argv[1], root / 'examples' / 'bicycle', '--title', 'City bicycle'))
    browser.one('#tree').send_keys(Keys.ARROW_DOWN, Keys.ARROW_RIGHT, Keys.HOME)
    browser.driver.save_screenshot(str(root / 'docs' / 'product-page.png'))
