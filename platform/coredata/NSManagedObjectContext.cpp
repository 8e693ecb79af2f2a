#include "platform/coredata/NSManagedObjectContext.h"

#include "platform/coredata/PersistentStore.h"
#include "platform/foundation/LocalizableText.h"
#include "platform/foundation/NSOperationQueue.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace tarn {

NSManagedObjectContext::NSManagedObjectContext(std::shared_ptr<const NSManagedObjectModel> model, std::string file)
    : model_(std::move(model)), file_(std::move(file)) {}

NSManagedObjectContext::~NSManagedObjectContext() = default;

const NSEntityDescription* NSManagedObjectContext::entityForName(std::string_view name) const {
  return model_->entity(name);
}

std::shared_ptr<NSManagedObject> NSManagedObjectContext::insertNewObjectForEntityForName(std::string_view name) {
  const NSEntityDescription* const entity = entityForName(name);
  return entity == nullptr ? nullptr : addObject(*entity);
}

std::optional<NSManagedObjectContext::Objects> NSManagedObjectContext::executeFetchRequest(
    const NSFetchRequest& request) {
  if (request.entity() == nullptr || !refresh(*request.entity())) return std::nullopt;
  Objects found;
  for (const auto& object : objects_) {
    const bool isMeant = !request.predicate() || request.predicate()->evaluateWithObject(*object);
    if (object->entity_.get() == request.entity() && isMeant) found.push_back(object);
  }
  // A record of another running program may have come between ours.
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a->rowId_ && (!b->rowId_ || *a->rowId_ < *b->rowId_); });
  return found;
}

void NSManagedObjectContext::deleteObject(const std::shared_ptr<NSManagedObject>& object) {
  if (std::erase(objects_, object) > 0 && object->rowId_) deleted_.push_back(object);
}

bool NSManagedObjectContext::hasChanges() const {
  return !deleted_.empty() ||
         std::any_of(objects_.begin(), objects_.end(), [](const auto& object) { return object->hasChanges(); });
}

void NSManagedObjectContext::performBlock(std::function<void()> block) {
  NSOperationQueue::mainQueue().addOperationWithBlock(std::move(block));
}

std::optional<NSError> NSManagedObjectContext::save() {
  if (!hasChanges()) return std::nullopt;
  if (store_ == nullptr) return NSError{file_, localizable("it isn't open")};
  std::vector<std::int64_t> rowIds;
  if (!store_->begin()) return store_->error();
  if (auto error = writeChanges(rowIds)) {
    store_->rollback();
    return error;
  }
  if (!store_->commit()) {
    NSError error = store_->error();
    store_->rollback();
    return error;
  }
  for (std::size_t i = 0; i < objects_.size(); ++i) {
    objects_[i]->rowId_ = rowIds[i];
    objects_[i]->changed_.clear();
  }
  deleted_.clear();
  return std::nullopt;
}

std::shared_ptr<NSManagedObject> NSManagedObjectContext::addObject(const NSEntityDescription& entity) {
  // The entity lives as long as its model.
  return objects_.emplace_back(
      std::make_shared<NSManagedObject>(std::shared_ptr<const NSEntityDescription>(model_, &entity)));
}

bool NSManagedObjectContext::refresh(const NSEntityDescription& entity) {
  auto rows = store_ == nullptr ? std::nullopt : store_->rows(entity);
  if (!rows) return false;
  const auto isOf = [&entity](const auto& object, std::int64_t rowId) {
    return object->entity_.get() == &entity && object->rowId_ == rowId;
  };
  const auto isStored = [&](const auto& object) {
    return std::any_of(rows->begin(), rows->end(), [&](const auto& row) { return isOf(object, row.id); });
  };
  // What another running program has removed, unless it was changed here.
  std::erase_if(objects_, [&](const auto& object) {
    return object->entity_.get() == &entity && !object->hasChanges() && !isStored(object);
  });
  for (auto& row : *rows) {
    const auto isRow = [&](const auto& object) { return isOf(object, row.id); };
    if (std::any_of(deleted_.begin(), deleted_.end(), isRow)) continue;
    const auto known = std::find_if(objects_.begin(), objects_.end(), isRow);
    const auto object = known == objects_.end() ? addObject(entity) : *known;
    object->rowId_ = row.id;
    if (!object->hasChanges()) object->values_ = std::move(row.values);
  }
  return true;
}

std::optional<NSError> NSManagedObjectContext::writeChanges(std::vector<std::int64_t>& rowIds) {
  for (const auto& object : deleted_) {
    if (!store_->deleteRow(object->entity(), *object->rowId_)) return store_->error();
  }
  for (const auto& object : objects_) {
    if (!object->hasChanges()) {
      rowIds.push_back(*object->rowId_);
      continue;
    }
    const auto missing = object->rowId_ ? std::nullopt : object->missingRequiredKey();
    if (missing) return NSError{file_, object->entity().name + "." + *missing + " is missing"};
    const auto rowId = write(*object);
    if (!rowId) return store_->error();
    rowIds.push_back(*rowId);
  }
  return std::nullopt;
}

std::optional<std::int64_t> NSManagedObjectContext::write(const NSManagedObject& object) {
  if (object.rowId_) {
    const auto isThere = store_->updateRow(object.entity(), {*object.rowId_, object.values_}, object.changed_);
    if (!isThere) return std::nullopt;
    if (*isThere) return object.rowId_;
  }
  // New, or removed by another running program while it was changed here: the change wins.
  return store_->insertRow(object.entity(), object.values_);
}

}  // namespace tarn
