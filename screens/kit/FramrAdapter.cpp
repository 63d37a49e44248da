#include "screens/kit/FramrAdapter.h"

void FramrAdapter::setWindow(QQuickWindow* window) {
    if (window == m_window) return;
    disconnect(m_widthConnection);
    disconnect(m_heightConnection);
    m_window = window;
    if (window) {
        m_widthConnection = connect(window, &QWindow::widthChanged, this, &FramrAdapter::relayout);
        m_heightConnection = connect(window, &QWindow::heightChanged, this, &FramrAdapter::relayout);
    }
    emit windowChanged();
    relayout();
}

void FramrAdapter::setTopInset(double inset) {
    if (inset == m_topInset) return;
    m_topInset = inset;
    relayout();
}

void FramrAdapter::relayout() {
    if (m_window && m_window->width() > 0 && m_window->height() > 0)
        Framr::setScreen(m_window->width(), m_window->height(), m_topInset);
    else
        Framr::setScreen(Framr::scrnWid(), Framr::scrnHei(), m_topInset);
    ++m_revision;
    emit layoutChanged();
}
