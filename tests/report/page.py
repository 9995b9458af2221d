"""A report in a headless browser, for the tests in this folder."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.support.ui import WebDriverWait

PROGRAM, SOURCES = sys.argv[1:3]
SECONDS = 20  # for what the browser does by itself

WIDE = (1440, 900)
NARROW = (360, 760)


def started_browser():
    options = Options()
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
                     "--disable-background-networking", "--no-first-run"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def scenario(name):
    return pathlib.Path(SOURCES) / "scenarios" / name / "scenario.yaml"


def reported(file, page):
    """The document of a run that writes its page."""
    run = subprocess.run([PROGRAM, "run", "--json", "--report", page, file], capture_output=True,
                         check=False)
    return json.loads(run.stdout)


class PageTest(unittest.TestCase):
    """One browser for all tests of a class."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.browser = started_browser()
        cls.addClassCleanup(cls.browser.quit)

    def page(self, name="report"):
        return pathlib.Path(self.folder.name) / (name + ".html")

    def open(self, page, address="", size=WIDE, media=None):
        self.browser.execute_cdp_cmd(
            "Emulation.setDeviceMetricsOverride",
            {"width": size[0], "height": size[1], "deviceScaleFactor": 1, "mobile": size == NARROW})
        self.browser.execute_cdp_cmd(
            "Emulation.setEmulatedMedia",
            {"features": [{"name": "prefers-color-scheme", "value": media or "light"}]})
        self.browser.get("about:blank")
        self.forget_logs()
        self.browser.get(page.as_uri() + address)

    def forget_logs(self):
        self.browser.get_log("browser")
        self.browser.get_log("performance")

    def script(self, text, *arguments):
        return self.browser.execute_script(text, *arguments)

    def all(self, selector):
        return self.browser.find_elements("css selector", selector)

    def one(self, selector):
        return self.browser.find_element("css selector", selector)

    def text(self, selector):
        return self.one(selector).get_attribute("textContent")

    def type(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()

    def wait_for(self, what, condition):
        WebDriverWait(self.browser, SECONDS, 0.02).until(lambda _: condition(), what)

    def expect_quiet(self):
        """No error in the console, and no request but the one for the page."""
        self.assertEqual(self.browser.get_log("browser"), [])
        messages = [json.loads(entry["message"])["message"]
                    for entry in self.browser.get_log("performance")]
        requests = [message["params"]["request"]["url"] for message in messages
                    if message["method"] == "Network.requestWillBeSent"]
        self.assertEqual([url for url in requests if not url.startswith(("file:", "about:"))], [])
        self.assertEqual(len(requests), 1, requests)


def main():
    unittest.main(argv=sys.argv[:1], module="__main__", verbosity=2)
