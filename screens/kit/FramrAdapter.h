#pragma once
// The layout functions for QML (singleton "Framr"). The application's root
// window hands itself over once (Framr.window = root); from then on every
// resize sets the screen size and re-lays out: each frame below is a property
// that changes with it. Frames with arguments are functions; a binding that
// calls one should also read `revision` so that it is re-evaluated on resize.
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QRectF>
#include <QSizeF>
#include <QtQml/qqmlregistration.h>

#include "export/Framr.h"

#define QUILLO_FRAME(name)                                                  \
    Q_PROPERTY(QRectF name READ name NOTIFY layoutChanged)                  \
public:                                                                     \
    QRectF name() const { return Framr::name(); }                           \
private:

#define QUILLO_LENGTH(name)                                                 \
    Q_PROPERTY(double name READ name NOTIFY layoutChanged)                  \
public:                                                                     \
    double name() const { return Framr::name(); }                           \
private:

class FramrAdapter : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Framr)
    QML_SINGLETON
    Q_PROPERTY(QQuickWindow* window READ window WRITE setWindow NOTIFY windowChanged)
    // The window's top safe-area inset (a notch); 0 on an ordinary desktop.
    Q_PROPERTY(double topInset READ topInset WRITE setTopInset NOTIFY layoutChanged)
    Q_PROPERTY(int revision READ revision NOTIFY layoutChanged)
    Q_PROPERTY(bool isIpad READ isIpad NOTIFY layoutChanged)
    Q_PROPERTY(bool isIphone4s READ isIphone4s NOTIFY layoutChanged)
    QUILLO_LENGTH(scrnWid)
    QUILLO_LENGTH(scrnHei)
    QUILLO_LENGTH(navBarHei)
    QUILLO_LENGTH(bottomInset)
    QUILLO_LENGTH(heiForBottomOrTopPanel)
    QUILLO_LENGTH(bottomPanelHei)
    QUILLO_FRAME(fullScrn)
    QUILLO_FRAME(allSpaceBelowNav)
    QUILLO_FRAME(allSpaceAboveBottom)
    QUILLO_FRAME(ffExportFileIcon)
    QUILLO_FRAME(ffExportFileSizeLabel)
    QUILLO_FRAME(ffExportResultLabel)
    QUILLO_FRAME(ffExportLoopAudioVideo)
    QUILLO_FRAME(ffExportLoopTacts)
    QUILLO_FRAME(ffExportAttachSoundPhotos)
    QUILLO_FRAME(ffExportLoopAttachPhotos)
    QUILLO_FRAME(ffExportLoopSaveOrSend)
    QUILLO_FRAME(ffExportLoopFormat)
    QUILLO_FRAME(ffExportLoopSaveOrSendVideo)
    QUILLO_FRAME(ffSoundWave)
    QUILLO_FRAME(ffSoundPhotoImage)
    QUILLO_FRAME(ffBottomPanel)
    QUILLO_FRAME(ffBpmButton)
    QUILLO_FRAME(ffPauseButton)
    QUILLO_FRAME(ffOkButton)
    QUILLO_FRAME(ffBPMfullScrn)
    QUILLO_FRAME(fullScrnCircle)
    QUILLO_FRAME(aboveNav)
    // Library lists, side menu, name-and-folder panel.
    QUILLO_LENGTH(heightForUsualCell)
    QUILLO_FRAME(ffFolderCellTriangle)
    QUILLO_FRAME(ffFolderCellFolderImg)
    QUILLO_FRAME(ffFolderCellName)
    QUILLO_FRAME(ffItemCellPlayButton)
    QUILLO_FRAME(ffSoundCellColor)
    QUILLO_FRAME(ffGlobalCellIcon)
    QUILLO_FRAME(ffGlobalCellLabel)
    QUILLO_FRAME(ffSoundFolderTable)
    QUILLO_FRAME(ffSoundFolderAddButton)
    QUILLO_FRAME(ffSoundFolderNameField)

public:
    using QObject::QObject;

    QQuickWindow* window() const { return m_window; }
    void setWindow(QQuickWindow* window);
    double topInset() const { return m_topInset; }
    void setTopInset(double inset);
    int revision() const { return m_revision; }
    bool isIpad() const { return Framr::isIpad(); }
    bool isIphone4s() const { return Framr::isIphone4s(); }

    Q_INVOKABLE QRectF ffItemCellNameOrAuthor(bool author) const { return Framr::ffItemCellNameOrAuthor(author); }
    Q_INVOKABLE QRectF ffLoopCellColor(int index) const { return Framr::ffLoopCellColor(index); }
    Q_INVOKABLE QRectF ffNameOfSound(bool forSound) const { return Framr::ffNameOfSound(forSound); }
    Q_INVOKABLE QRectF ffFolderName(bool forSound) const { return Framr::ffFolderName(forSound); }
    Q_INVOKABLE QRectF ffFolderIcon(const QRectF& button, bool sound) const { return Framr::ffFolderIcon(button, sound); }
    Q_INVOKABLE QRectF ffSoundFolderOkOrCancelButton(bool ok) const { return Framr::ffSoundFolderOkOrCancelButton(ok); }
    Q_INVOKABLE QRectF tffsrtfsc(const QRectF& rect) const { return Framr::tffsrtfsc(rect); }
    Q_INVOKABLE QRectF ffExportFileNameLabelOfSound(bool ofSound) const {
        return Framr::ffExportFileNameLabelOfSound(ofSound);
    }
    Q_INVOKABLE QRectF ffExportDoneButton(bool isSend) const { return Framr::ffExportDoneButton(isSend); }
    Q_INVOKABLE QRectF ffExportProgress(double progress) const { return Framr::ffExportProgress(progress); }
    Q_INVOKABLE QRectF ffExportParamSegcontAtRow(int row) const { return Framr::ffExportParamSegcontAtRow(row); }
    Q_INVOKABLE QRectF ffExportLoopAllInstrV(int format) const { return Framr::ffExportLoopAllInstrV(format); }
    Q_INVOKABLE QRectF ffExportTrackLogoOnAll(const QRectF& all) const { return Framr::ffExportTrackLogoOnAll(all); }
    Q_INVOKABLE QRectF ffExportLoopInstrVOnAll(const QSizeF& all, int ind, int of) const {
        return Framr::ffExportLoopInstrVOnAll(all, ind, of);
    }
    Q_INVOKABLE QRectF ffExportPhotoOnInstr(const QSizeF& cell) const { return Framr::ffExportPhotoOnInstr(cell); }
    Q_INVOKABLE QRectF ffBottomButtonAtCol(int col, bool onPanel) const {
        return Framr::ffBottomButtonAtCol(col, onPanel);
    }
    Q_INVOKABLE QRectF ffCircleViewOn(const QRectF& adjuster) const { return Framr::ffCircleViewOn(adjuster); }
    Q_INVOKABLE QRectF ffIndiktViewOnPercent(const QRectF& circle, double percent) const {
        return Framr::ffIndiktViewOn(circle, percent);
    }
    Q_INVOKABLE QRectF ffIndiktViewOnTact(const QRectF& circle, int tact) const {
        return Framr::ffIndiktViewOn(circle, static_cast<uint16_t>(tact));
    }

signals:
    void windowChanged();
    void layoutChanged();

private:
    void relayout();

    QPointer<QQuickWindow> m_window;
    QMetaObject::Connection m_widthConnection, m_heightConnection;
    double m_topInset = 0;
    int m_revision = 0;
};

#undef QUILLO_FRAME
#undef QUILLO_LENGTH
