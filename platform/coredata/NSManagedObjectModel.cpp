#include "platform/coredata/NSManagedObjectModel.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

namespace tarn {
namespace {

// Names stand in SQL as they are.
bool isName(std::string_view word) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return !word.empty() && isLetter(word.front()) &&
         std::all_of(word.begin(), word.end(), [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

std::optional<NSAttributeType> typeNamed(std::string_view word) {
  if (word == "string") return NSAttributeType::string;
  if (word == "integer32") return NSAttributeType::integer32;
  if (word == "integer64") return NSAttributeType::integer64;
  if (word == "uuid") return NSAttributeType::uuid;
  return std::nullopt;
}

std::vector<std::string> wordsOf(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;)
    words.push_back(std::move(word));
  return words;
}

bool addLine(const std::vector<std::string>& words, std::vector<NSEntityDescription>& entities) {
  if (words.empty() || words.front().starts_with('#')) return true;
  if (words.front() == "entity") {
    if (words.size() != 2 || !isName(words[1])) return false;
    entities.push_back({words[1], {}});
    return true;
  }
  if (words.size() != 3 || entities.empty() || !isName(words[0])) return false;
  const auto type = typeNamed(words[1]);
  if (!type || (words[2] != "required" && words[2] != "optional")) return false;
  entities.back().attributes.push_back({words[0], *type, words[2] == "required"});
  return true;
}

}  // namespace

const NSAttributeDescription* NSEntityDescription::attribute(std::string_view attributeName) const {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [attributeName](const auto& attribute) { return attribute.name == attributeName; });
  return found == attributes.end() ? nullptr : &*found;
}

std::shared_ptr<const NSManagedObjectModel> NSManagedObjectModel::initWithContents(const std::string& text) {
  std::istringstream lines(text);
  std::vector<NSEntityDescription> entities;
  for (std::string line; std::getline(lines, line);) {
    if (!addLine(wordsOf(line), entities)) return nullptr;
  }
  const bool hasRecords = !entities.empty() && std::none_of(entities.begin(), entities.end(), [](const auto& entity) {
    return entity.attributes.empty();
  });
  return hasRecords ? std::make_shared<NSManagedObjectModel>(std::move(entities)) : nullptr;
}

NSManagedObjectModel::NSManagedObjectModel(std::vector<NSEntityDescription> entities)
    : entities_(std::move(entities)) {}

const NSEntityDescription* NSManagedObjectModel::entity(std::string_view name) const {
  const auto found =
      std::find_if(entities_.begin(), entities_.end(), [name](const auto& entity) { return entity.name == name; });
  return found == entities_.end() ? nullptr : &*found;
}

}  // namespace tarn
