#pragma once
// A loop at a glance: one tile per instrument (eight places), each in its
// sound's colour, optionally with the sound's photo. Used where a loop is
// shown small (track rows, the export screen).
#include <QColor>
#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

class Loop;

class LoopView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString loopName READ loopName WRITE setLoopName NOTIFY tilesChanged)
    Q_PROPERTY(int count READ count NOTIFY tilesChanged)
    // Per instrument, in order.
    Q_PROPERTY(QList<QColor> colors READ colors NOTIFY tilesChanged)
    Q_PROPERTY(QStringList photoSources READ photoSources NOTIFY tilesChanged)
    // One bit per instrument whose sound is sounding now: its tile shows smaller.
    Q_PROPERTY(int sounding READ sounding NOTIFY soundingChanged)

public:
    static constexpr int kSlots = 8;
    // How much a tile darkens when its colour clashes with the colour around it.
    static constexpr double kClashDelta = -0.03;

    explicit LoopView(QObject* parent = nullptr);

    QString loopName() const;
    void setLoopName(const QString& name);
    int count() const { return static_cast<int>(m_colors.size()); }
    QList<QColor> colors() const { return m_colors; }
    QStringList photoSources() const { return m_photos; }
    Loop* loop() const { return m_loop; }
    int sounding() const { return m_sounding; }

    // Rebuilds the tiles for another loop.
    void changeInstrumentsForNewLoop(Loop* loop);
    // Shows the sounds' photos on the tiles, or removes them.
    Q_INVOKABLE void refreshAllPhotos(bool show);
    // Tiles whose sound has this colour number darken a little, so they stand
    // out from a background of the same colour.
    Q_INVOKABLE void changeInstrColorToDarkerIfSameAs(int colorNumber);
    // A player's report that the sound of instrument i starts or stops sounding.
    void setTileSounding(int instrument, bool sounding);
    void stopAllSounding();

signals:
    void tilesChanged();
    void soundingChanged();

private:
    Loop* m_loop = nullptr;
    bool m_photosShown = false;
    QList<QColor> m_colors;
    QStringList m_photos;
    int m_sounding = 0;
};
