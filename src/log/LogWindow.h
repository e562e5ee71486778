// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "log/Log.h"

#include <QWidget>

class HTextEdit;
class QSpinBox;

namespace Log
{

/// The window that shows the log, live, up to a level of detail that the user picks. While it is
/// hidden it holds no text and costs nothing.
class Window : public QWidget
{
    Q_OBJECT

public:
    /// `list` must outlive the window. The window is a top-level one of its own, neither on top of
    /// `parent` nor owned by it.
    Window(EntryList& list, QWidget* parent);

    void setVisible(bool visible) override;
    void keyPressEvent(QKeyEvent* event) override;

    /// Escapes a line for rich text, in place. Ampersands stay: an entity in a line shows its
    /// character.
    static void htmlProtect(QString& text);

public Q_SLOTS:
    /// Shows what the log has gained; without effect while the window is hidden.
    void appended();
    void levelChanged(int level);

private:
    void render();
    /// Says in a tool tip of the last line what its colour means.
    void explainColor(int kind);
    void scrollToEnd();
    void clear();

    EntryList& m_list;
    [[maybe_unused]] QWidget* m_parent;
    QSpinBox* m_level;
    HTextEdit* m_text;
    int m_shown = 0; ///< how many entries of the list have been looked at
    bool m_live = false;
};

} // namespace Log
