#pragma once
// What a program or test links to use the Quillo.Lists module (and the kit
// under it): the plugins, imported once, and the engine set up for both.
class QQmlEngine;

namespace quillo::lists {
void addTo(QQmlEngine& engine);
}
