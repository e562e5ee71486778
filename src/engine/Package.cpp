// SPDX-License-Identifier: GPL-2.0-or-later
#include "engine/Package.h"

#include <QtAlgorithms>

#include <atomic>
#include <cstdio>

namespace Package
{

Entry::~Entry()
{
    static std::atomic_flag told = ATOMIC_FLAG_INIT;
    if (pyObject && !told.test_and_set())
        std::fprintf(stderr,
                     "Internal error: attempt to delete Package::Entry %p with extant python "
                     "obj %p\n",
                     static_cast<void*>(this), static_cast<void*>(pyObject));
    delete next;
}

EntryList::~EntryList()
{
    qDeleteAll(*this);
}

} // namespace Package
