// SPDX-License-Identifier: GPL-2.0-or-later
#include "ProxyTest.h"

#include <QRandomGenerator>

using namespace Package;
using namespace PackageTable;

void ProxyTest::init()
{
    engine = new TableEngine;
    model = new Model(engine);
    proxy = new SortFilterProxyModel(ViewAll, true, true, engine);
    proxy->setSourceModel(model);
    proxy->sort(ColumnName);
}

void ProxyTest::cleanup()
{
    delete proxy;
    delete model;
    delete engine;
}

void ProxyTest::fillAtRandom(int count)
{
    QRandomGenerator random(1);
    for (int i = 0; i < count; ++i) {
        Entry* entry = engine->add(
            QString(QChar('a' + random.bounded(5))) + QString::number(random.bounded(20)),
            static_cast<State>(random.bounded(3)), static_cast<Kind>(random.bounded(3)));
        entry->action = static_cast<Action>(random.bounded(4));
        entry->verRel = QString("%1-%2").arg(random.bounded(12)).arg(random.bounded(3));
        entry->repo = random.bounded(2) ? "base" : "Updates";
        entry->arch = random.bounded(2) ? "noarch" : "x86_64";
        entry->duplicate = random.bounded(4) == 0;
        TableEngine::setSize(entry, quint64(random.bounded(6)) << 30);
        TableEngine::setBuildTime(entry, random.bounded(4) * 1500000000L);
        if (random.bounded(3) == 0) {
            entry->next = TableEngine::make(entry->name, StateInstalled);
            if (random.bounded(2))
                entry->next->next = TableEngine::make(entry->name, StateInstalled);
        }
    }
    model->reset();
}
