# SPDX-License-Identifier: GPL-2.0-or-later
"""The manual for the menu Help: it is whole, and speaks of all that the program shows and says."""

import html.parser
import os
import re
import subprocess
import tempfile
import time
import unittest
import urllib.parse
from pathlib import Path

import texts

BUILT = Path(os.environ["VOK_BUILT"]) / "docs"
LARGEST_IMAGE = 60 * 1024
# Marks of links to other machines that only tell of the place and are never followed.
ELSEWHERE = ("https://example.org/",)


class Page(html.parser.HTMLParser):
    """The text of a page, and what it refers to."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links, self.loaded, self.words = set(), set(), set(), []
        self._hidden = 0
        self.feed(path.read_text(encoding="utf-8"))
        words = "".join(self.words).translate({0x2019: "'", 0x201c: '"', 0x201d: '"', 0x200b: None})
        self.text = " ".join(words.split())

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        if "id" in attributes:
            self.anchors.add(attributes["id"])
        if tag == "a" and "href" in attributes:
            self.links.add(attributes["href"])
        elif attributes.get("href") or attributes.get("src"):
            self.loaded.add(attributes.get("src") or attributes["href"])
        self._hidden += tag in ("style", "script")

    def handle_endtag(self, tag):
        self._hidden -= tag in ("style", "script")

    def handle_data(self, data):
        if not self._hidden:
            self.words.append(data)


class Manual(unittest.TestCase):
    """As built, before it is installed."""

    @classmethod
    def setUpClass(cls):
        cls.file = BUILT / "html/index.html"
        cls.page = Page(cls.file)

    def assert_mentioned(self, wanted):
        text = self.page.text
        self.assertTrue(wanted)
        self.assertEqual(sorted(one for one in wanted if one not in text), [])

    def test_links_lead_to_places_in_the_page(self):
        links = {link for link in self.page.links if not link.startswith(ELSEWHERE)}
        self.assertGreater(len(links), 50)
        self.assertEqual(sorted(link for link in links if link[:1] != "#" or link[1:] not in self.page.anchors), [])

    def test_images_exist_and_nothing_comes_from_elsewhere(self):
        self.assertGreater(len(self.page.loaded), 15)
        missing = [name for name in self.page.loaded
                   if ":" in name or not (self.file.parent / urllib.parse.unquote(name)).is_file()]
        self.assertEqual(missing, [])
        style = self.file.read_text(encoding="utf-8")
        self.assertEqual(re.findall(r"@import[^;]*|url\((?!data:)[^)]*\)", style), [])

    def test_each_image_is_used_and_small(self):
        images = sorted((texts.TREE / "docs/manual/images").glob("*.png"))
        used = {Path(name).name for name in self.page.loaded}
        self.assertEqual([image.name for image in images if image.name not in used], [])
        self.assertEqual([image.name for image in images if image.stat().st_size > LARGEST_IMAGE], [])

    def test_the_pdf_has_all_chapters(self):
        data = (BUILT / "manual.pdf").read_bytes()
        self.assertTrue(data.startswith(b"%PDF-"))
        chapters = len(re.findall("<h2 id=", self.file.read_text(encoding="utf-8")))
        self.assertGreaterEqual(data.count(b"/Type /Page\n"), chapters)

    def test_each_item_of_a_menu_is_mentioned(self):
        items = texts.menu_items()
        self.assertGreater(len(items), 20)
        self.assert_mentioned(items)

    def test_each_button_box_and_field_is_mentioned(self):
        labels = texts.labels()
        self.assertGreater(len(labels), 30)
        self.assert_mentioned(labels)

    def test_each_option_is_mentioned(self):
        options = texts.options()
        self.assertGreater(len(options), 9)
        self.assert_mentioned({name for option in options for name in option.names})

    def test_each_message_of_the_program_is_explained(self):
        parts = {part for text in texts.program_messages() for part in texts.fragments(text)}
        self.assertGreater(len(parts), 40)
        self.assert_mentioned(parts)

    def test_each_message_of_the_script_is_explained(self):
        parts = {part for text in texts.script_messages() for part in texts.fragments(text)}
        self.assertGreater(len(parts), 40)
        self.assert_mentioned(parts)

    def test_each_message_of_the_shell_scripts_is_explained(self):
        parts = {part for text in texts.shell_messages() for part in texts.fragments(text)}
        self.assertGreater(len(parts), 10)
        self.assert_mentioned(parts)

    def test_no_example_of_a_search_is_tied_to_a_whole_list(self):
        source = (texts.TREE / "docs/manual/filter.adoc").read_text(encoding="utf-8")
        examples = re.findall(r"^\|`\+?(.+?)\+?` \|Search \|", source, re.MULTILINE)
        self.assertGreater(len(examples), 3)
        self.assertEqual([one for one in examples if re.search(r"^\^|[^|]\$$", one)], [])

    def test_patterns_of_files_keep_their_stars(self):
        patterns = ("/etc/yum.repos.d/*.repo", "/etc/yum/repos.d/*.repo")
        self.assert_mentioned(patterns)
        page = (BUILT / "vok.1").read_text(encoding="utf-8")
        self.assertEqual([pattern for pattern in patterns if pattern not in page], [])

    def test_it_tells_nothing_of_the_place_and_time_of_its_making(self):
        now = time.gmtime()
        for name in ("html/index.html", "manual.pdf", "vok.1"):
            data = (BUILT / name).read_bytes()
            for trace in (str(texts.TREE), str(BUILT), time.strftime("%Y-%m-%d", now), time.strftime("D:%Y%m%d", now)):
                self.assertNotIn(trace.encode(), data, name)

    def test_it_is_installed_where_the_program_looks(self):
        source = (texts.TREE / "src/shell/MainWindowCommands.cpp").read_text(encoding="utf-8")
        directory = re.search(r'"(/usr/share/doc/[^"]+)"', source).group(1)
        with tempfile.TemporaryDirectory() as root:
            subprocess.run([os.environ["VOK_CMAKE"], "--install", os.environ["VOK_BUILT"], "--prefix", "/usr",
                            "--component", "manual"], env=dict(os.environ, DESTDIR=root), check=True,
                           stdout=subprocess.DEVNULL)
            page = Path(root + directory) / "html/index.html"
            self.assertEqual(Page(page).text, self.page.text)
            self.assertEqual([name for name in self.page.loaded if not (page.parent / name).is_file()], [])
            self.assertTrue((Path(root + directory) / "manual.pdf").is_file())
            self.assertTrue((Path(root) / "usr/share/man/man1/vok.1").is_file())


if __name__ == "__main__":
    unittest.main()
