#pragma once
// The colour chooser: the 144 palette colours as 16 rows of 9 cells filling
// the screen, the current colour bordered. A touch anywhere picks the cell
// under it and closes the chooser. The sound editor and the track editor's
// rows open it; they listen to colorPicked and removeSoundColorView.
#include <QColor>
#include <QObject>
#include <QPointF>
#include <QSizeF>
#include <QtQml/qqmlregistration.h>

class SoundColorView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int colorNumBefore READ colorNumBefore WRITE setColorNumBefore NOTIFY colorNumBeforeChanged)
    Q_PROPERTY(bool onFScircle READ onFScircle WRITE setOnFScircle NOTIFY onFScircleChanged)
    Q_PROPERTY(int rows READ rows CONSTANT)
    Q_PROPERTY(int columns READ columns CONSTANT)

public:
    static constexpr int kRows = 16;
    static constexpr int kColumns = 9;
    static constexpr double kRowHeightFactor = 0.0625;  // of the screen height
    static constexpr double kBorderFactor = 0.1;        // of a cell's width

    explicit SoundColorView(QObject* parent = nullptr);

    int colorNumBefore() const { return m_colorNumBefore; }
    void setColorNumBefore(int number);
    // Whether the chooser sits on the full-screen circle (the sound editor)
    // rather than straight on the screen (the track editor).
    bool onFScircle() const { return m_onFScircle; }
    void setOnFScircle(bool on);
    int rows() const { return kRows; }
    int columns() const { return kColumns; }

    // The colour number under a point in screen coordinates: column =
    // x / (width / 9), row = y / (height / 16), both truncated and kept inside
    // the grid (a touch on the very last pixel row or column still picks the
    // last cell).
    static int colorNumberAt(QPointF point, QSizeF screen);
    Q_INVOKABLE static QColor colorforRow(int row, int column);

    // A touch at a point of the screen: reports the colour, then asks to be removed.
    Q_INVOKABLE void touchAt(double x, double y, double screenWidth, double screenHeight);

signals:
    void colorPicked(int colorNum);
    void removeSoundColorView();
    void colorNumBeforeChanged();
    void onFScircleChanged();

private:
    int m_colorNumBefore = 0;
    bool m_onFScircle = true;
};
