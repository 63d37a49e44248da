#pragma once
// One instrument tile of the loop editor's grid. The editor keeps a pool of
// eight; a tile keeps its identity while it moves between cells, so that its
// view can animate the move.
#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include "screens/kit/VolumeView.h"

class LoopTile : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the loop editor's tiles")
    Q_PROPERTY(bool present READ present NOTIFY changed)
    Q_PROPERTY(int cell READ cell NOTIFY changed)
    Q_PROPERTY(QColor color READ color NOTIFY changed)
    // Shown smaller while its sound sounds.
    Q_PROPERTY(bool sounding READ sounding NOTIFY changed)
    // Marked for deletion: shrunk to nothing.
    Q_PROPERTY(bool marked READ marked NOTIFY changed)
    Q_PROPERTY(QString photoSource READ photoSource NOTIFY changed)
    Q_PROPERTY(VolumeView* volumeView READ volumeView CONSTANT)

public:
    explicit LoopTile(VolumeViewDelegate* volumeDelegate, QObject* parent = nullptr) : QObject(parent), m_volume(new VolumeView(this)) {
        m_volume->setDelegate(volumeDelegate);
        m_volume->setCanEnlarge(false);
    }

    bool present() const { return m_present; }
    int cell() const { return m_cell; }
    QColor color() const { return m_color; }
    bool sounding() const { return m_sounding; }
    bool marked() const { return m_marked; }
    QString photoSource() const { return m_photo; }
    VolumeView* volumeView() const { return m_volume; }

    void setPresent(bool v) { set(m_present, v); }
    void setCell(int v) { set(m_cell, v); }
    void setColor(const QColor& v) { set(m_color, v); }
    void setSounding(bool v) { set(m_sounding, v); }
    void setMarked(bool v) { set(m_marked, v); }
    void setPhotoSource(const QString& v) { set(m_photo, v); }

signals:
    void changed();

private:
    template <class T>
    void set(T& field, const T& value) {
        if (field == value) return;
        field = value;
        emit changed();
    }

    bool m_present = false;
    int m_cell = 0;
    QColor m_color;
    bool m_sounding = false;
    bool m_marked = false;
    QString m_photo;
    VolumeView* m_volume;
};
