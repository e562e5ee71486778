// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QStringList>

class QWidget;

/// Looks, while it exists, at all texts that the process's widgets have, each time that one of them
/// is painted, shown, hidden or gets another tool tip or title: labels, fields as they are shown,
/// tables with their tool tips, menus, message boxes with their details, and what screen readers
/// are told. Keeps those that hold one of the given words.
class SeenTexts : public QObject
{
public:
    explicit SeenTexts(const QStringList& words);

    /// What held a word, with the class of its widget.
    QStringList found() const { return QStringList(guilty.begin(), guilty.end()); }
    /// Whether a text, as a whole, was among those.
    bool saw(const QString& text) const { return texts.contains(text); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void look(const QWidget* widget, bool alive = true);

    const QStringList words;
    QSet<QString> texts;
    QSet<QString> guilty;
};
