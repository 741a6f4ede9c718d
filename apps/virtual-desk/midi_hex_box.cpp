// SPDX-License-Identifier: MIT
#include "virtual-desk/midi_hex_box.h"

#include <QFontDatabase>
#include <QGridLayout>

#include "common/hex.h"
#include "common/midi_text.h"
#include "virtual-desk/panel_parts.h"

namespace VirtualDesk
{

namespace
{

/// What bytes say when they are one message, else how many they are.
QString Describe(const std::vector<std::uint8_t>& bytes)
{
    constexpr unsigned BitsOfByte = 8;
    if (bytes.front() == 0xF0 && bytes.back() == 0xF7)
        return QString::fromStdString(Tools::DescribeSystemExclusive(bytes));
    std::uint32_t message = 0;
    for (std::size_t i = 0; i < bytes.size() && i < 3; ++i)
        message |= std::uint32_t{bytes[i]} << BitsOfByte * i;
    if (bytes.front() >= 0x80 && Tools::GetShortMessageLength(message) == bytes.size())
        return QString::fromStdString(Tools::DescribeShortMessage(message));
    return bytes.size() == 1 ? QString("1 byte") : QString("%1 bytes").arg(bytes.size());
}

} // namespace

MidiHexBox::MidiHexBox(const QString& name, const QString& action, const QString& meaning,
                       QWidget* parent)
    : QWidget(parent), m_bytes(new QLineEdit(this)), m_go(MakeButton(name + "Go", action, meaning)),
      m_check(MakeLabel(name + "Check", "What the bytes are"))
{
    m_bytes->setObjectName(name + "Bytes");
    m_bytes->setAccessibleName(meaning + ": bytes in hexadecimal");
    m_bytes->setPlaceholderText("Bytes, such as 90 3C 64");
    m_bytes->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_check->setWordWrap(true);
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(m_bytes, 0, 0);
    grid->addWidget(m_go, 0, 1);
    grid->addWidget(m_check, 1, 0, 1, 2);
    connect(m_bytes, &QLineEdit::textChanged, this, &MidiHexBox::Check);
    connect(m_bytes, &QLineEdit::returnPressed, this, &MidiHexBox::Enter);
    connect(m_go, &QPushButton::clicked, this, &MidiHexBox::Enter);
    Check();
}

void MidiHexBox::Check()
{
    const QString text = m_bytes->text().trimmed();
    const auto bytes = Tools::ParseHex(text.toStdString());
    m_go->setEnabled(bytes && !bytes->empty());
    if (text.isEmpty())
        m_check->setText("Two hexadecimal digits a byte.");
    else if (!bytes)
        m_check->setText("\u26A0 No bytes: two hexadecimal digits each, with blanks between.");
    else
        m_check->setText(Describe(*bytes));
}

void MidiHexBox::Enter()
{
    const auto bytes = Tools::ParseHex(m_bytes->text().trimmed().toStdString());
    if (bytes && !bytes->empty())
        Q_EMIT entered(QString::fromStdString(Tools::FormatHex(*bytes)));
}

} // namespace VirtualDesk
