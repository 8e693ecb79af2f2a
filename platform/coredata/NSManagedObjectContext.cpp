#include "platform/coredata/NSManagedObjectContext.h"

#include "platform/foundation/LocalizableText.h"

namespace tarn {

std::shared_ptr<NSManagedObject> NSManagedObjectContext::insertNewObjectForEntityForName(std::string_view name) {
  return objects_.emplace_back(std::make_shared<NSManagedObject>(entityForName(name)));
}

std::optional<NSManagedObjectContext::Objects> NSManagedObjectContext::executeFetchRequest(
    std::string_view entityName) {
  const NSEntityDescription& entity = entityForName(entityName);
  // Named by us, since a table may call it by the name of its key. No attribute has this name.
  const std::string select = std::string("SELECT rowid AS 'row number', * FROM ") + entity.name + " ORDER BY rowid";
  auto rows = store_ ? store_->run(select) : std::nullopt;
  if (!rows) return std::nullopt;
  Objects fetched;
  for (NSManagedValues& row : *rows) {
    const auto rowId = std::get<std::int64_t>(row.extract("row number").mapped());
    const auto known = std::ranges::find_if(
        objects_, [&](const auto& object) { return &object->entity_ == &entity && object->rowId_ == rowId; });
    const bool isNew = known == objects_.end();
    const auto object = fetched.emplace_back(isNew ? std::make_shared<NSManagedObject>(entity) : *known);
    if (!isNew) objects_.erase(known);
    object->rowId_ = rowId;
    if (!object->hasChanges()) object->values_ = std::move(row);
  }
  // Of those left, another running program has removed what neither is new nor was changed here.
  for (const auto& object : objects_) {
    if (object->hasChanges() || &object->entity_ != &entity) fetched.push_back(object);
  }
  objects_ = fetched;
  std::erase_if(fetched, [&](const auto& object) { return object->isDeleted_ || &object->entity_ != &entity; });
  return fetched;
}

bool NSManagedObjectContext::hasChanges() const {
  return std::ranges::any_of(objects_, [](const auto& object) { return object->hasChanges(); });
}

std::optional<NSError> NSManagedObjectContext::save() {
  if (!hasChanges()) return std::nullopt;
  if (!store_) return NSError{file_, localizable("it isn't open")};
  std::vector<std::optional<std::int64_t>> rowIds;
  const auto failure = store_->writeWhole([&] {
    return std::ranges::all_of(objects_, [&](const auto& object) { return write(*object, rowIds.emplace_back()); });
  });
  if (failure) return NSError{file_, *failure};
  for (std::size_t i = 0; i < objects_.size(); ++i) {
    objects_[i]->rowId_ = rowIds[i];
    objects_[i]->changed_.clear();
  }
  std::erase_if(objects_, [](const auto& object) { return object->isDeleted_; });
  return std::nullopt;
}

bool NSManagedObjectContext::write(const NSManagedObject& object, std::optional<std::int64_t>& rowId) {
  rowId = object.rowId_;
  if (!object.hasChanges()) return true;
  const std::string table = object.entity_.name;
  if (object.isDeleted_) return !rowId || store_->run("DELETE FROM " + table + " WHERE rowid = ?", {*rowId});
  // A new one has no number, which no row has.
  std::vector<NSManagedValue> known(1);
  if (rowId) known.front() = *rowId;
  auto rows = store_->run("SELECT rowid FROM " + table + " WHERE rowid = ?", known);
  // New, or removed by another running program while it was changed here: the change wins.
  const bool isNew = rows && rows->empty();
  if (isNew) rows = store_->run("INSERT INTO " + table + " DEFAULT VALUES RETURNING rowid");
  if (!rows) return false;
  const NSManagedValue& row = rows->front().at("rowid");
  rowId = std::get<std::int64_t>(row);
  return std::ranges::all_of(object.values_, [&](const auto& keyAndValue) {
    const auto& [key, value] = keyAndValue;
    if (!isNew && !object.changed_.contains(key)) return true;
    return store_->run("UPDATE " + table + " SET " + key + " = ? WHERE rowid = ?", {value, row}).has_value();
  });
}

}  // namespace tarn
