#pragma once

#include <QTranslator>

namespace tarn {

// Lets the texts of the compiled layouts, and the toolkit's own, take the program's lookup of localised texts.
class LocalizedLayouts final : public QTranslator {
public:
  bool isEmpty() const override { return false; }
  QString translate(const char* context, const char* sourceText, const char* disambiguation, int n) const override;
};

}  // namespace tarn
