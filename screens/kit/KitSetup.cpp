#include "screens/kit/KitSetup.h"

#include <QQmlEngine>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Quillo_KitPlugin)

namespace quillo::kit {

void addTo(QQmlEngine& engine) {
    // The module's files live in the program's resources under this prefix.
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

}  // namespace quillo::kit
