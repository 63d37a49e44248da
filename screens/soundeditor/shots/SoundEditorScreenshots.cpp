#include "screens/soundeditor/shots/SoundEditorScreenshots.h"

#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>
#include <cmath>
#include <vector>

#include "app/AppDelegate.h"
#include "app/window/QuilloWindow.h"
#include "app/window/RootScreens.h"
#include "app/window/ScreenshotRunner.h"
#include "engine/AudioController.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "recording/OscilloscopeLayer.h"
#include "screens/soundeditor/SoundColorView.h"
#include "screens/soundeditor/SoundView.h"

namespace {

QQuickItem* stackOf(QuilloWindow* w) { return w->window()->findChild<QQuickItem*>("screenStack"); }

void pushSoundScreen(QuilloWindow* w, const QString& soundName) {
    w->rootScreens()->resetTopView();
    QQuickItem* stack = stackOf(w);
    if (!stack) {
        qWarning("Screenshots: the window has no screen stack");
        return;
    }
    QQmlExpression(qmlContext(stack), stack, QStringLiteral("pop(null, StackView.Immediate)")).evaluate();
    QQmlExpression push(qmlContext(stack), stack,
                        QStringLiteral("push(\"qrc:/qt/qml/Quillo/SoundEditor/OneSoundView.qml\", "
                                       "{ soundName: \"%1\" }, StackView.Immediate)")
                            .arg(soundName));
    push.evaluate();
    if (push.hasError()) qWarning("Screenshots: %s", qPrintable(push.error().toString()));
}

SoundView* panelOf(QuilloWindow* w) { return w->window()->findChild<SoundView*>(); }
QQuickItem* panelItemOf(QuilloWindow* w) {
    return w->window()->findChild<QQuickItem*>("soundPanel");
}

// The screenshot machine has no microphone: the trace is shown a decaying
// tone, handed to the layer as the engine would hand it a block of input.
void feedTone(OscilloscopeLayer& layer) {
    constexpr uint32_t frames = 2048;
    std::vector<int16_t> left(frames), right(frames);
    for (uint32_t k = 0; k < frames; ++k) {
        const double envelope = 0.25 + 0.65 * std::sin(M_PI * k / frames);
        left[k] = right[k] = int16_t(envelope * 30000 * std::sin(2 * M_PI * k * 7.0 / 2048.0) *
                                     std::cos(2 * M_PI * k * 31.0 / 2048.0));
    }
    AudioBufferList audio{2, {{1, frames * 2, left.data()}, {1, frames * 2, right.data()}}};
    layer.receiverCallback(nullptr, AudioController::inputSource(), AudioTimeStamp{0, 0}, frames, &audio);
    layer.display();
}

}  // namespace

void addSoundEditorScreenshots(ScreenshotRunner& runner, QuilloWindow& window) {
    QuilloWindow* w = &window;
    runner.add({QStringLiteral("sound-new"), [w] {
                    w->window()->resize(390, 844);
                    pushSoundScreen(w, QString());
                    return w->window();
                }});
    runner.add({QStringLiteral("sound-recording"), [w] {
                    if (SoundView* view = panelOf(w)) {
                        view->startRecordPressed();
                        if (AppDelegate* app = AppDelegate::shared(); app && app->inputOscilloscope) {
                            app->inputOscilloscope->stop();  // keep the fed picture still
                            feedTone(*app->inputOscilloscope);
                        }
                    }
                    return w->window();
                }});
    runner.add({QStringLiteral("sound-recorded"), [w] {
                    if (SoundView* view = panelOf(w)) {
                        view->stopRecordPressed();
                        // A silent take draws a flat line; show a built-in sound's shape instead.
                        const auto sounds = CoreDater::shIns().getAllItemsOfEntity("Sound");
                        for (ManagedObject* object : sounds) {
                            auto* sound = static_cast<Sound*>(object);
                            if (!sound->preloaded()) continue;
                            const std::string take = Filer::pathToTemporaryDocument(Filer::kTempRecordingName);
                            Filer::deleteFileAtPath(take);
                            Filer::copyFile(Filer::urlForSound(sound), take);
                            view->showWaveform(QString::fromStdString(take));
                            break;
                        }
                    }
                    return w->window();
                }});
    runner.add({QStringLiteral("sound-settings"), [w] {
                    if (SoundView* view = panelOf(w)) view->settingsPressed();
                    return w->window();
                }});
    runner.add({QStringLiteral("sound-colors"), [w] {
                    if (SoundView* view = panelOf(w)) view->okSettingsPressed();
                    if (QQuickItem* panel = panelItemOf(w)) QMetaObject::invokeMethod(panel, "openColorChooser");
                    return w->window();
                }});
    runner.add({QStringLiteral("sound-photo"), [w] {
                    if (SoundView* view = panelOf(w); view && view->soundColorV())
                        view->soundColorV()->touchAt(10, 10, 390, 844);
                    if (QQuickItem* panel = panelItemOf(w)) QMetaObject::invokeMethod(panel, "openPhotoChooser");
                    return w->window();
                }});
    runner.add({QStringLiteral("sound-existing"), [w] {
                    if (SoundView* view = panelOf(w)) view->cancelPressed();
                    const auto sounds = CoreDater::shIns().getAllItemsOfEntity("Sound");
                    pushSoundScreen(w, sounds.empty() ? QString()
                                                      : QString::fromStdString(static_cast<Sound*>(sounds.back())->name()));
                    return w->window();
                }});
}
