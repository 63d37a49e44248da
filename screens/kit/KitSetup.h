#pragma once
// Makes the kit's QML module ("import Quillo.Kit") available to an engine.
// A program links quillo_kit and quillo_kitplugin and calls this once per engine.
class QQmlEngine;

namespace quillo::kit {
void addTo(QQmlEngine& engine);
}
