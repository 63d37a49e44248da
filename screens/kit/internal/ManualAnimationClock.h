#pragma once
// A clock for Qt's animations that moves only when told, so that a test or a
// screenshot sees an animation at an exact moment, however loaded the machine.
#include <QAnimationDriver>
#include <QCoreApplication>

namespace quillo::kit {

class ManualAnimationClock : public QAnimationDriver {
public:
    // Install after showing a window: Qt Quick's render loop installs a
    // driver of its own when the first window appears.
    void ensureInstalled() {
        if (m_installed) return;
        install();
        m_installed = true;
    }
    ~ManualAnimationClock() override {
        if (m_installed) uninstall();
    }

    qint64 elapsed() const override { return m_elapsed; }

    // Advances every running animation by ms, in steps of one 60 Hz frame.
    void advanceBy(qint64 ms) {
        for (qint64 left = ms; left > 0;) {
            QCoreApplication::processEvents();  // animations register their start through the event loop
            const qint64 step = std::min<qint64>(16, left);
            m_elapsed += step;
            left -= step;
            advance();
        }
        QCoreApplication::processEvents();
    }

    // Qt's animation timer counts from the moment it starts the driver.
    void start() override {
        m_elapsed = 0;
        QAnimationDriver::start();
    }

private:
    qint64 m_elapsed = 0;
    bool m_installed = false;
};

}  // namespace quillo::kit
