# SPDX-License-Identifier: GPL-2.0-or-later
"""The script's source: it compiles, and holds nothing that a checker objects to."""

import ast
import importlib.util
import os
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
SHARE = os.environ.get('VOKSHARE') or os.path.join(HERE, '..', '..', '..', 'share')


def sources():
    for top in (os.path.join(SHARE, 'python'), HERE):
        for folder, _, names in os.walk(top):
            for name in sorted(names):
                if name.endswith('.py'):
                    yield os.path.join(folder, name)


class Source(unittest.TestCase):

    def test_compilesAsTheOldestVersionThatIsServed(self):
        for path in sources():
            with open(path, encoding='utf-8') as stream:
                text = stream.read()
            with self.subTest(path=path):
                if sys.version_info >= (3, 8):
                    ast.parse(text, path, feature_version=(3, 6))
                compile(text, path, 'exec')

    @unittest.skipUnless(importlib.util.find_spec('pyflakes'), 'pyflakes is not installed')
    def test_pyflakesHasNothingToSay(self):
        result = subprocess.run([sys.executable, '-m', 'pyflakes'] + list(sources()),
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                universal_newlines=True)
        self.assertEqual(result.stdout, '')

    def test_eachFileNamesItsLicenceAndSaysWhatItDoes(self):
        for path in sources():
            with open(path, encoding='utf-8') as stream:
                text = stream.read()
            with self.subTest(path=path):
                self.assertTrue(text.startswith('# SPDX-License-' 'Identifier: GPL-2.0-or-later\n'))
                self.assertTrue(ast.get_docstring(ast.parse(text)))
                self.assertNotIn('except' + ':', text)
                self.assertLess(text.count('\n'), 600)


if __name__ == '__main__':
    unittest.main()
