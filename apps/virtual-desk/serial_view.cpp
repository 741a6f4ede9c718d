// SPDX-License-Identifier: MIT
#include "virtual-desk/serial_view.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <algorithm>

namespace VirtualDesk
{

namespace
{

constexpr int MostLevel = 255;

QString CountText(std::size_t count, const QString& one, const QString& many)
{
    return QString::number(count) + ' ' + (count == 1 ? one : many);
}

} // namespace

SerialView::SerialView(const DeskController& desk, const std::string& device, QWidget* parent)
    : QWidget(parent), m_panel(desk.GetDesk().FindPanel(device)), m_backlight(new LevelBar(this)),
      m_counts(new QLabel(this)), m_text(new QPlainTextEdit(this))
{
    const QString name = QString::fromStdString(device);
    m_backlight->setObjectName("backlight " + name);
    m_backlight->setAccessibleName("Backlight of the panel at " + name);
    m_backlight->SetWidestText("255 of 255");
    m_counts->setObjectName("counts " + name);
    m_text->setObjectName("packets " + name);
    m_text->setAccessibleName("Packets that came to " + name);
    m_text->setReadOnly(true);
    m_text->setTabChangesFocus(true);
    m_text->setMaximumBlockCount(PacketLimit);
    m_text->setPlaceholderText("no packets yet");
    m_text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    constexpr int Lines = 5;
    m_text->setFixedHeight(Lines * m_text->fontMetrics().lineSpacing() +
                           2 * (m_text->frameWidth() + 4));

    auto* const form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(new QLabel(name, this));
    form->addRow("Backlight", m_backlight);
    form->addRow("Heard", m_counts);
    form->addRow(m_text);
}

void SerialView::Refresh()
{
    if (!m_panel)
        return;
    const int level = m_panel->GetBacklight();
    m_backlight->SetLevel(level < 0 ? -1 : level / double(MostLevel),
                          level < 0 ? QString("not set") : QString::number(level) + " of 255");
    const std::size_t count = m_panel->CountPackets();
    m_counts->setText(CountText(count, "packet", "packets") + ", " +
                      QString::number(m_panel->CountRejected()) + " rejected, " +
                      CountText(m_panel->CountNoise(), "byte", "bytes") + " of noise");
    ShowPackets(count);
}

/// Those that are not shown yet, of very many the last ones.
void SerialView::ShowPackets(std::size_t count)
{
    if (count == m_shown)
        return;
    const std::size_t begin = std::max(m_shown, count - std::min(count, PacketLimit));
    QStringList lines;
    std::size_t end = begin;
    for (const Desk::PanelPacket& packet : m_panel->GetPackets(begin)) {
        lines += QString::fromStdString(Desk::ToText(packet));
        ++end;
    }
    m_shown = end;
    m_text->appendPlainText(lines.join('\n'));
}

} // namespace VirtualDesk
