# SPDX-License-Identifier: GPL-2.0-or-later
"""Turns a main configuration file and directories of repository files into a JSON list of the
repositories that the package manager's own reader finds in them."""

import json
import logging
import sys

import dnf.conf
import dnf.conf.read


def main(main_file, *directories):
    logging.basicConfig(stream=sys.stderr)
    conf = dnf.conf.Conf()
    conf.config_file_path = main_file
    conf.reposdir = list(directories)
    json.dump([{'id': repo.id,
                'name': repo.name,
                'baseurl': list(repo.baseurl),
                'mirrorlist': repo.mirrorlist or '',
                'enabled': repo.enabled,
                'gpgcheck': repo.gpgcheck,
                'excludes': list(repo.excludepkgs)}
               for repo in dnf.conf.read.RepoReader(conf, {})], sys.stdout)


main(*sys.argv[1:])
