// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <array>

#include "standalone/widget_report.h"

namespace VirtualDesk
{

/// The link lights of one board: for each of the console's two networks whether there is a link,
/// and whether it is a fast one.
class LinkLights : public QWidget
{
    Q_OBJECT

public:
    explicit LinkLights(QWidget* parent = nullptr);

    void SetLights(const Standalone::Report::SetLinkLights& lights);
    /// Such as "Console network: link, gigabit; fixture network: no link".
    QString GetText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Standalone::Report::SetLinkLights m_lights;
};

} // namespace VirtualDesk
