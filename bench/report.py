# SPDX-License-Identifier: GPL-2.0-or-later
"""Prints the table of figures of `scripts/bench`, each beside its floor and what it should be.

Usage: report.py FOLDER        with the files cold1, cold2 ... warm1, warm2 ... and search,
                               or apply1, apply2 ... and large1, large2 ...
                               or describe1, describe2 ...
"""
import pathlib
import statistics
import sys


def read(path):
    """Figures of one run: name to value."""
    figures = {}
    for line in path.read_text().splitlines():
        name, value, _unit = line.split('\t')
        figures[name] = float(value)
    return figures


def median(runs, name):
    return statistics.median(run[name] for run in runs)


def collection_rows(cold, warm, search):
    """(what, value, unit, floor or None, what it is measured by, limit) for each line."""
    warm_floor = median(warm, 'bare.total')
    yield ('collection, warm: to rows', median(warm, 'collect.to-rows'), 'ms', warm_floor,
           'ratio', 2.0)
    yield ('collection, cold: to rows', median(cold, 'collect.to-rows'), 'ms', median(cold, 'bare.total'),
           'ratio', 1.3)
    yield ('  of which in the engine, warm', median(warm, 'collect.engine'), 'ms', None, '', None)
    yield ('GUI thread silent, warm', max(run['collect.gui-gap'] for run in warm), 'ms', None,
           'value', 100)
    yield ('GUI thread silent, cold', max(run['collect.gui-gap'] for run in cold), 'ms', None, 'value', 100)
    yield ('peak memory, collection', median(warm, 'memory.peak-after-collection'), 'MB',
           median(warm, 'bare.peak'), 'difference', 200)
    yield ('peak memory, cold collection', median(cold, 'memory.peak-after-collection'), 'MB',
           median(cold, 'bare.peak'), 'difference', 200)
    yield ('peak memory, search', search['memory.peak-after-search'], 'MB',
           median(warm, 'bare.peak'), 'difference', 200)
    for name, what, limit in (
            ('table.filter-literal', 'filter on Return, a word', 100),
            ('table.filter-regexp', 'filter on Return, an expression', 100),
            ('table.filter-all', 'filter on Return, all rows', 100),
            ('table.state-installable', 'state filter to installable', 300),
            ('table.state-all', 'state filter to all', 300),
            ('table.sort-column-3', 'sort by name', 300),
            ('table.sort-column-4', 'sort by version', 300),
            ('table.sort-column-7', 'sort by size', 300),
            ('table.sort-column-8', 'sort by build time', 300),
            ('table.sort-column-1', 'sort by state', 300),
            ('table.resize-columns', 'column resize', 300)):
        yield (what, median(warm, name), 'ms', None, 'value', limit)
    yield ('file lists, loading', search['search.load-file-lists'], 'ms', None, '', None)
    yield ('GUI thread silent, file lists', search['search.load-file-lists-gui-gap'], 'ms', None,
           'value', 100)
    yield ('change logs, loading', search['search.load-other-data'], 'ms', None, '', None)
    yield ('search, preparing', search['search.prepare'], 'ms', None, '', None)
    yield ('GUI thread silent, preparing', search['search.prepare-gui-gap'], 'ms', None, 'value',
           100)
    number = 1
    while 'grep.pattern-%d' % number in search:
        yield ('search, pattern %d (%d rows, %d lines)' % (
                   number, search['search.pattern-%d.rows' % number],
                   search['grep.pattern-%d.lines' % number]),
               search['search.pattern-%d' % number], 'ms', search['grep.pattern-%d' % number],
               'ratio', 10.0)
        number += 1


def apply_rows(runs, large):
    """The same for installing many packages on a small system, and a few on a large one."""
    count = runs[0]['apply.packages']
    yield ('%d packages: OK to the new table' % count, median(runs, 'apply.run'), 'ms',
           median(runs, 'bare.apply'), 'ratio', 1.15)
    yield ('  to the end of the transaction', median(runs, 'apply.run.transaction'), 'ms',
           median(runs, 'bare.apply'), 'ratio', None)
    yield ("  of the floor's, downloads", median(runs, 'bare.apply.download'), 'ms', None, '', None)
    yield ('  collecting anew', median(runs, 'apply.run.collection'), 'ms', None, '', None)
    yield ('  GUI thread silent', max(run['apply.run.gui-gap'] for run in runs), 'ms', None, 'value', 100)
    yield ('%d packages: Apply to the review' % count, median(runs, 'apply.to-review'), 'ms', None, '', None)
    yield ('  GUI thread silent', max(run['apply.to-review.gui-gap'] for run in runs), 'ms', None, 'value', 100)
    count = '%d packages among %d rows' % (large[0]['apply.packages'], large[0]['apply.rows'])
    yield (count + ': to the review', median(large, 'apply.to-review'), 'ms', None, '', None)
    yield ('  GUI thread silent', max(run['apply.to-review.gui-gap'] for run in large), 'ms', None, 'value', 100)
    yield (count + ': OK to the table', median(large, 'apply.run'), 'ms', None, '', None)
    yield ('  to the end of the transaction', median(large, 'apply.run.transaction'), 'ms', None, '', None)
    yield ('  collecting anew', median(large, 'apply.run.collection'), 'ms', None, '', None)
    yield ('  GUI thread silent', max(run['apply.run.gui-gap'] for run in large), 'ms', None, 'value', 100)


def describe_rows(runs):
    """The same for descriptions that are hard to show."""
    for name, what in (
            ('plain', 'a plain package'),
            ('heavy', '200 lines, 10,000 relations'),
            ('heavy.files', '  20,000 files'),
            ('heavy.change-log', '  5,000 changes'),
            ('wide', 'lines of 10,000 characters'),
            ('wide.files', '  paths of 10,000 characters'),
            ('wide.change-log', '  changes of 10,000 characters'),
            ('odd', 'markup, bidirectional and combined text'),
            ('versions', '500 installed versions')):
        for action, limit in (('open', 500), ('resize', 100), ('scroll', 100), ('close', 100)):
            figure = 'describe.%s.%s' % (name, action)
            if figure in runs[0]:
                yield ('%s: %s' % (what, action), median(runs, figure), 'ms', None, 'value', limit)


def main(folder):
    folder = pathlib.Path(folder)
    runs = {kind: [read(path) for path in sorted(folder.glob(kind + '[0-9]*'))]
            for kind in ('cold', 'warm', 'apply', 'large', 'describe')}
    if runs['apply']:
        rows = apply_rows(runs['apply'], runs['large'])
        print('%d runs with cold package caches' % len(runs['apply']))
    elif runs['describe']:
        rows = describe_rows(runs['describe'])
        print('%d runs' % len(runs['describe']))
    else:
        rows = collection_rows(runs['cold'], runs['warm'], read(folder / 'search'))
        print('%d rows, %d cold and %d warm runs' % (
            runs['warm'][0]['collect.rows'], len(runs['cold']), len(runs['warm'])))
    form = '%-46s %10s %10s  %-4s %10s %8s  %s'
    print(form % ('figure', 'value', 'floor', 'unit', 'measure', 'limit', ''))
    for what, value, unit, floor, kind, limit in rows:
        measured = {'ratio': lambda: value / floor, 'difference': lambda: value - floor,
                    'value': lambda: value, '': lambda: None}[kind]()
        print((form % (what, '%.1f' % value, '-' if floor is None else '%.1f' % floor, unit,
                       '-' if measured is None else '%.2f' % measured,
                       '-' if limit is None else '%g' % limit,
                       '' if limit is None or measured <= limit else 'over')).rstrip())


if __name__ == '__main__':
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(sys.argv[1])
