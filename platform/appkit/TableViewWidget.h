#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QAbstractScrollArea>

namespace tarn {

// The widget behind NSTableView. A layout promotes a QAbstractScrollArea to it and tells its columns by two properties
// of type string list, from left to right: `columnIdentifiers` (not translatable), which also says how many columns
// there are, and `columnTitles` (translatable), what the header shows over each. Either may be set first.
class TableViewWidget final : public QAbstractScrollArea {
  Q_OBJECT
  Q_PROPERTY(QStringList columnIdentifiers READ columnIdentifiers WRITE setColumnIdentifiers)
  Q_PROPERTY(QStringList columnTitles READ columnTitles WRITE setColumnTitles)

public:
  explicit TableViewWidget(QWidget* parent = nullptr);
  ~TableViewWidget() override;

  QStringList columnIdentifiers() const;
  void setColumnIdentifiers(const QStringList& identifiers);
  QStringList columnTitles() const;
  void setColumnTitles(const QStringList& titles);
};

}  // namespace tarn
