#include "resources/Model.h"

#include <QFile>

namespace tarn {

std::string serverItemModelText() {
  QFile file(QStringLiteral(":/ServerItemModel.momd"));
  return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

}  // namespace tarn
