#!/usr/bin/env python3
"""Opens reports in a browser, as their readers do: what they show, what they answer, that nothing leaves them.

usage: browser_test.py TOVRDB [FOLDER]

FOLDER keeps the pages and their pictures in both colour schemes. Exit code 77: no browser can be started.
"""
import base64
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.common.exceptions import WebDriverException
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select

TOVRDB = os.path.abspath(sys.argv[1])
MARKUP = "<script>alert(1)</script>"
MOST_BYTES = 25e6


def start_browser():
    options = webdriver.ChromeOptions()
    for argument in ["--headless=new", "--window-size=1400,1000", "--force-device-scale-factor=1"]:
        options.add_argument(argument)
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(options=options)


def tovrdb(*arguments):
    environment = dict(os.environ, TOVRDB_KEY="a key for the browser's test")
    return subprocess.run([TOVRDB, "-q", *arguments], env=environment, check=True, capture_output=True, text=True).stdout


def put(database, rect, seed, *more):
    edges = ",".join(map(str, rect))
    tovrdb("sample", "--size", "1920x1080", "--cabinet", "32x45", "--seed", str(seed), "--rect", edges, "-o",
           "cells.npy", "--force")
    tovrdb("coef", "put", database, "--type", "1", "--at", f"{rect[0]},{rect[1]}", "cells.npy", *more)


def make_wall():
    """Two screens of several areas; in one of them, an area and a single cell changed since old.db."""
    tovrdb("create", "wall.db", "--type", "0")
    tovrdb("screen", "add", "wall.db", "--name", "main", "--rect", "0,0,63,89")
    tovrdb("screen", "add", "wall.db", "--name", MARKUP, "--rect", "64,0,95,44")
    for left, top in [(0, 0), (32, 0), (0, 45), (32, 45), (64, 0)]:
        put("wall.db", (left, top, left + 31, top + 44), 1)
    with open("wall.db", "rb") as wall, open("old.db", "wb") as old:
        old.write(wall.read())
    put("wall.db", (32, 45, 63, 89), 2, "--replace")
    put("wall.db", (3, 4, 3, 4), 2, "--patch")
    tovrdb("report", "wall.db", "--against", "old.db", "--cabinet", "16x15", "-o", "wall.html")


class ReportTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = BROWSER
        make_wall()

    def open(self, page, width=1400, height=1000):
        self.browser.set_window_size(width, height)
        self.browser.get_log("performance")
        self.browser.get("file://" + os.path.abspath(page))

    def tearDown(self):
        self.assertEqual(self.browser.get_log("browser"), [])
        messages = [json.loads(entry["message"])["message"] for entry in self.browser.get_log("performance")]
        sent = [each["params"]["request"]["url"] for each in messages if each["method"] == "Network.requestWillBeSent"]
        self.assertTrue(all(url.startswith("file://") and url.endswith(".html") for url in sent), sent)

    def section(self, index=0):
        section = self.browser.find_element(By.ID, f"set-{index}")
        self.browser.execute_script("arguments[0].scrollIntoView()", section)
        self.wait(lambda: section.find_elements(By.CSS_SELECTOR, "canvas.picture"))
        return section

    def wait(self, condition):
        webdriver.support.ui.WebDriverWait(self.browser, 20).until(lambda unused: condition())

    def readout(self, section):
        return section.find_element(By.CSS_SELECTOR, ".readout").text

    def choose(self, section, label, text):
        for each in section.find_elements(By.CSS_SELECTOR, ".controls label"):
            if each.text.startswith(label):
                return Select(each.find_element(By.TAG_NAME, "select")).select_by_visible_text(text)
        return self.fail(f"there is no control {label}")

    def point(self, section, x, y):
        """The cell and the number under the pointer, which moves there from the picture's middle."""
        canvas = section.find_element(By.CSS_SELECTOR, "canvas.picture")
        ActionChains(self.browser).move_to_element_with_offset(canvas, x, y).perform()
        found = re.match(r"cell (\d+),(\d+), component (\d+): ([-\d.e]+)$", self.readout(section))
        self.assertIsNotNone(found, self.readout(section))
        return [int(each) for each in found.groups()[:3]] + [float(found.group(4))]

    def stored(self, database, x, y, component, *more):
        lines = tovrdb("coef", "get", database, "--type", "1", "--rect", f"{x},{y},{x},{y}", *more, "--csv", "-o", "-")
        return float(lines.splitlines()[1].split(",")[2 + component])

    def test_the_value_under_the_pointer_is_the_stored_one(self):
        self.open("wall.html")
        section = self.section()
        seen = set()
        for component in ["0", "5", "8"]:
            self.choose(section, "component", "component " + component)
            for x, y in [(0, 0), (-60, -80), (70, 120), (33, -150)]:
                column, row, which, value = self.point(section, x, y)
                self.assertEqual(which, int(component))
                self.assertEqual(value, self.stored("wall.db", column, row, which))
                seen.add((column, row))
        self.assertEqual(len(seen), 4)

    def test_a_click_on_an_area_shows_it(self):
        self.open("wall.html")
        areas = self.browser.find_elements(By.CSS_SELECTOR, ".map .area")
        self.assertEqual(len(areas), 5)
        last = [each for each in areas if "32,45,63,89" in each.get_attribute("aria-label")][0]
        ActionChains(self.browser).click(last).perform()
        section = self.section()
        self.assertEqual(self.readout(section), "shown: 32,45,63,89")
        column, row, _, _ = self.point(section, 0, 8)
        self.assertTrue(abs(column - 48) <= 1 and abs(row - 67) <= 1, (column, row))

    def test_tables_sort_and_their_rows_lead_to_their_places(self):
        self.open("wall.html")
        section = self.section()
        table = section.find_elements(By.CSS_SELECTOR, ".tables table")[0]
        self.assertIn("cabinets", table.text)
        titles = [each.text.split(" ")[0] for each in table.find_elements(By.TAG_NAME, "th")]
        column = titles.index("mean")
        for descending in [False, True]:
            table.find_elements(By.CSS_SELECTOR, "th button")[column].click()
            rows = table.find_elements(By.CSS_SELECTOR, "tbody tr")
            values = [float(row.find_elements(By.TAG_NAME, "td")[column].text) for row in rows]
            self.assertEqual(values, sorted(values, reverse=descending))
            self.assertEqual(len(values), 4 * 6)
        rows[0].click()
        self.assertTrue(self.readout(section).startswith("shown: "))

    def test_keys_do_what_the_pointer_does(self):
        self.open("wall.html")
        section = self.section()
        canvas = section.find_element(By.CSS_SELECTOR, "canvas.picture")
        canvas.send_keys(Keys.ARROW_RIGHT)
        first = self.readout(section)
        self.assertRegex(first, r"^cell \d+,\d+, component 0: \d+$")
        canvas.send_keys(Keys.ARROW_RIGHT, Keys.ARROW_DOWN, "+", "+", "0")
        x, y = (int(each) for each in re.match(r"cell (\d+),(\d+)", first).groups())
        self.assertTrue(self.readout(section).startswith(f"cell {x + 1},{y + 1}, "), self.readout(section))

    def test_the_difference_is_that_of_the_two_files(self):
        self.open("wall.html")
        section = self.section()
        self.assertIn("1441 of 5760 cells changed", section.text)
        self.choose(section, "show", "difference")
        column, row, which, value = self.point(section, 60, 100)
        self.assertEqual(value, self.stored("wall.db", column, row, which) - self.stored("old.db", column, row, which))
        self.assertIn("What changed", self.browser.find_element(By.ID, "changes").text)

    def test_it_prints_on_pages_of_their_own_in_landscape(self):
        self.open("wall.html")
        options = {"preferCSSPageSize": True, "printBackground": True}
        pdf = base64.b64decode(self.browser.execute_cdp_cmd("Page.printToPDF", options)["data"])
        with open("wall.pdf", "wb") as file:
            file.write(pdf)
        sizes = re.findall(rb"/MediaBox \[0 0 ([\d.]+) ([\d.]+)\]", pdf)
        self.assertEqual({(round(float(width)), round(float(height))) for width, height in sizes}, {(842, 595)})
        sections = len(self.browser.find_elements(By.CSS_SELECTOR, "section.set"))
        self.assertEqual(sections, 2)
        self.assertTrue(1 + sections <= len(sizes) <= 3 + 4 * sections, len(sizes))

    def test_prints_have_both_pictures_in_shape_and_say_what_is_left_out(self):
        tovrdb("report", "wall.db", "--against", "old.db", "--cabinet", "8x15", "--force", "-o", "cabinets.html")
        self.open("cabinets.html")
        section = self.section()
        before = section.find_element(By.CSS_SELECTOR, "canvas.picture").size
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
        try:
            self.browser.execute_script("window.dispatchEvent(new Event('beforeprint'))")
            titles = [each.text for each in section.find_elements(By.TAG_NAME, "figcaption")]
            self.assertEqual(titles, ["Values, component 0", "Difference, component 0"])
            shapes = self.browser.execute_script(
                "return Array.from(arguments[0].querySelectorAll('.prints canvas'), (each) => {"
                " const box = each.getBoundingClientRect();"
                " return [box.width / box.height, each.width / each.height]; })", section)
            for drawn, shown in shapes:
                self.assertAlmostEqual(drawn, shown, 2)
            table = section.find_elements(By.CSS_SELECTOR, ".tables .scroll")[0]
            self.assertIn("Printed: 25 of 48 rows, the worst first.", table.text)
            rows = [row for row in table.find_elements(By.CSS_SELECTOR, "tbody tr") if row.is_displayed()]
            self.assertEqual(len(rows), 25)
        finally:
            self.browser.execute_script("window.dispatchEvent(new Event('afterprint'))")
            self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": ""})
        self.assertEqual(section.find_element(By.CSS_SELECTOR, "canvas.picture").size, before)

    def test_it_is_readable_in_both_colour_schemes(self):
        for scheme in ["light", "dark"]:
            features = [{"name": "prefers-color-scheme", "value": scheme}]
            self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": features})
            self.open("wall.html", 1400, 3000)
            self.section(1)
            self.section(0)
            colours = self.browser.execute_script(
                "const style = getComputedStyle(document.body); return [style.color, style.backgroundColor]")
            ink, paper = (sum(map(int, re.findall(r"\d+", colour)[:3])) / 765 for colour in colours)
            self.assertGreater((ink - paper) * (1 if scheme == "dark" else -1), 0.7)
            self.browser.execute_script("window.scrollTo(0, 0)")
            self.browser.save_screenshot(scheme + ".png")
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})

    def test_names_with_markup_are_text_and_static_parts_need_no_script(self):
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        try:
            self.open("wall.html")
            text = self.browser.find_element(By.TAG_NAME, "body").text
            for part in [MARKUP + ", type 1", "The file is sound", "key counters", "Statistics per component",
                         "The pictures need scripts"]:
                self.assertIn(part, text)
            self.assertEqual(len(self.browser.find_elements(By.CSS_SELECTOR, ".map .screen")), 2)
        finally:
            self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})

    def test_a_file_without_anything_and_a_whole_screen_of_nine_components_open(self):
        tovrdb("create", "empty.db", "--type", "1")
        tovrdb("report", "empty.db", "-o", "empty.html")
        self.open("empty.html")
        self.assertIn("no blocks to show", self.browser.find_element(By.TAG_NAME, "body").text)
        tovrdb("create", "large.db", "--type", "1")
        put("large.db", (0, 0, 1919, 1079), 1, "--screen", "all")
        tovrdb("report", "large.db", "--cabinet", "32x45", "-o", "large.html")
        self.assertLess(os.path.getsize("large.html"), MOST_BYTES)
        self.open("large.html")
        section = self.section()
        self.assertIn("2073600", section.text)
        self.assertIn("1 block, 9 \u00d7 uint16", section.text)
        canvas = section.find_element(By.CSS_SELECTOR, "canvas.picture")
        ActionChains(self.browser).move_to_element(canvas).perform()
        column, row, value, error = map(float, re.match(
            r"cell (\d+),(\d+), component 0: ([\d.]+) \(\u00b1 ([\d.]+)\)$", self.readout(section)).groups())
        self.assertLess(error, 20)
        self.assertLessEqual(abs(value - self.stored("large.db", int(column), int(row), 0, "--screen", "all")), error)


if __name__ == "__main__":
    try:
        BROWSER = start_browser()
    except WebDriverException as failure:
        print(f"no browser can be started: {failure}", file=sys.stderr)
        sys.exit(77)
    with tempfile.TemporaryDirectory() as scratch:
        os.chdir(sys.argv[2] if len(sys.argv) > 2 else scratch)
        try:
            unittest.main(argv=sys.argv[:1])
        finally:
            BROWSER.quit()
