#include "screens/lists/ListsSetup.h"

#include <QtQml/qqmlextensionplugin.h>

#include "screens/kit/KitSetup.h"

Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)

namespace quillo::lists {
void addTo(QQmlEngine& engine) { quillo::kit::addTo(engine); }
}  // namespace quillo::lists
