// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace VirtualDesk
{

/// A level as a bar, with its text behind it and a mark for the level that is preferred.
class LevelBar : public QWidget
{
    Q_OBJECT

public:
    explicit LevelBar(QWidget* parent = nullptr);

    /// @param share 0 to 1; negative for a level that is not known
    /// @param text  what the level is, such as "37.5 %"
    void SetLevel(double share, const QString& text);
    double GetLevel() const { return m_level; }
    const QString& GetText() const { return m_text; }

    /// @param share 0 to 1; negative for no mark
    void SetMark(double share);
    double GetMark() const { return m_mark; }

    /// Makes room for texts as wide as this one.
    void SetWidestText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int GetTextWidth() const;
    QRectF GetTrack() const;

    double m_level = -1;
    double m_mark = -1;
    QString m_text;
    QString m_widestText;
};

} // namespace VirtualDesk
