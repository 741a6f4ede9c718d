// SPDX-License-Identifier: MIT
#include "virtual-desk/panel_parts.h"

#include <QFontDatabase>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace VirtualDesk
{

QPushButton* MakeButton(const QString& name, const QString& text, const QString& accessibleName)
{
    auto* const button = new QPushButton(text);
    button->setObjectName(name);
    button->setAccessibleName(accessibleName);
    button->setAutoDefault(false);
    return button;
}

void MakeSwitch(QAbstractButton& button)
{
    button.setCheckable(true);
    const auto mark = [&button, text = button.text()](bool isOn) {
        button.setText((isOn ? QStringLiteral("\u25CF ") : QStringLiteral("\u25CB ")) + text);
    };
    mark(button.isChecked());
    QObject::connect(&button, &QAbstractButton::toggled, &button, mark);
}

QLabel* MakeLabel(const QString& name, const QString& meaning)
{
    auto* const label = new QLabel;
    label->setObjectName(name);
    label->setAccessibleDescription(meaning);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel* MakeProblemLabel(const QString& name)
{
    QLabel* const label = MakeLabel(name, "What went wrong last");
    label->setWordWrap(true);
    label->hide();
    return label;
}

void ShowProblem(QLabel& label, const QString& line, const QString& error)
{
    label.setText(error.isEmpty() ? QString() : QString("\u26A0 %1: %2").arg(line, error));
    label.setVisible(!error.isEmpty());
}

void MarkFault(QWidget& widget, bool isInForce)
{
    if (widget.testAttribute(Qt::WA_SetPalette) == isInForce)
        return;
    QPalette palette;
    if (isInForce) {
        // Light text on it can be read in light and in dark palettes.
        const QColor red(176, 32, 32);
        palette.setColor(QPalette::Window, red);
        palette.setColor(QPalette::WindowText, Qt::white);
        palette.setColor(QPalette::Button, red);
        palette.setColor(QPalette::ButtonText, Qt::white);
    }
    widget.setPalette(palette);
    if (qobject_cast<QLabel*>(&widget))
        widget.setAutoFillBackground(isInForce);
}

QLineEdit* MakeFrameEdit(const QString& name, const QString& accessibleName)
{
    static const QRegularExpression form(R"(\d{1,2}[:;.]\d{1,2}[:;.]\d{1,2}[:;.]\d{1,3})");
    auto* const edit = new QLineEdit("10:00:00:00");
    edit->setObjectName(name);
    edit->setAccessibleName(accessibleName);
    edit->setToolTip("HH:MM:SS:FF");
    edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    edit->setValidator(new QRegularExpressionValidator(form, edit));
    return edit;
}

QGroupBox* MakeGroup(const QString& title, QLayout* layout)
{
    auto* const group = new QGroupBox(title);
    group->setLayout(layout);
    return group;
}

QGroupBox* MakeGroup(const QString& title, QWidget* content)
{
    auto* const layout = new QVBoxLayout;
    layout->addWidget(content);
    return MakeGroup(title, layout);
}

QScrollArea* MakeScrollArea(QWidget* content)
{
    auto* const scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(content);
    return scroll;
}

} // namespace VirtualDesk
