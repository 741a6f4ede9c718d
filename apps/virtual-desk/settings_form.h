// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <map>
#include <optional>
#include <string>

#include "standalone/light_settings.h"
#include "virtual-desk/pending_lines.h"

class QCheckBox;
class QDoubleSpinBox;
class QFormLayout;

namespace VirtualDesk
{

/// The light settings, each with an editor, and what announces them.
///
/// Controls: "setting NAME" for each, a spin box for a level and a check box for a switch; the
/// buttons "applySettings" and "fadeSettings".
class SettingsForm : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsForm(PendingLines& lines, QWidget* parent = nullptr);

    void Refresh();

private:
    void AddLevel(QFormLayout& form, const std::string& name);
    void AddSwitch(QFormLayout& form, const std::string& name);
    void Send(const std::string& name, const QString& value);
    void Show(const std::string& name, const std::string& value);

    PendingLines& m_lines;
    std::map<std::string, QDoubleSpinBox*> m_levels;
    std::map<std::string, QCheckBox*> m_switches;
    std::optional<Standalone::LightSettings> m_shown; // none: the editors may show anything
};

} // namespace VirtualDesk
