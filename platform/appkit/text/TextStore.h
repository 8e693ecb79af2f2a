#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

// The exact text of a field or text view, cut into blocks that can be laid out one by one: a line with what ends it
// (LF, CRLF, CR, U+2028, U+2029), or a part of a long line, which nothing ends. Where a block ends shows in no result:
// all positions and lengths are UTF-16 code units of the text as a whole.
//
// Blocks lie in pages of some ten thousand code units, so that a change costs what its page costs and a block is found
// by a walk over pages, however long the text is. Each block also keeps the number of rows that its view gives it, an
// estimate until the view has laid it out.
class TextStore final {
public:
  // `one`: nothing ends a line, as in a field.
  enum class Lines { many, one };

  // Where a block lies. Good until the next change.
  struct Block {
    std::size_t page = 0;
    std::size_t index = 0;
    std::size_t start = 0;
    // All of it, and the part of it that ends the line.
    std::size_t length = 0;
    std::size_t ending = 0;
    std::size_t rows = 1;

    std::size_t end() const { return start + length; }
    std::size_t contentEnd() const { return start + length - ending; }
  };

  // No block is longer.
  static constexpr std::size_t longestBlock = 1000;

  explicit TextStore(Lines lines);

  std::size_t length() const { return length_; }
  // Parts beyond the end are left out.
  QString text(std::size_t position, std::size_t length) const;
  std::string utf8(std::size_t position) const;
  char16_t at(std::size_t position) const;

  void replace(std::size_t position, std::size_t length, QStringView replacement);
  // The whole text becomes `utf8`. True if that only added to the end.
  bool set(std::string_view utf8);
  void append(std::string_view utf8);

  // There is always a last block; it is empty where the text is or ends in a line's end. A position between two blocks
  // is the later one's.
  Block lastBlock() const;
  Block blockAt(std::size_t position) const;
  bool hasNext(const Block& block) const;
  bool hasPrevious(const Block& block) const;
  Block next(const Block& block) const;
  Block previous(const Block& block) const;

  // Rows above `block`, and in all.
  std::size_t rowsBefore(const Block& block) const;
  std::size_t rows() const;
  // The block that holds this row; `row` becomes the row's number in it. The last block if there are fewer rows.
  Block blockAtRow(std::size_t& row) const;
  void setRows(Block& block, std::size_t rows);
  // Estimates the rows of all blocks anew for rows of so many characters.
  void setColumns(std::size_t columns);
  std::size_t columns() const { return columns_; }

private:
  struct Piece {
    std::uint32_t length = 0;
    std::uint32_t rows = 1;
    std::uint8_t ending = 0;
  };
  struct Page {
    QString text;
    std::vector<Piece> pieces;
    std::size_t rows = 0;

    std::size_t length() const { return static_cast<std::size_t>(text.size()); }
  };

  Block blockOf(std::size_t page, std::size_t index, std::size_t start) const;
  bool isContinued(const Block& block) const { return block.ending == 0; }
  std::uint32_t estimatedRows(std::size_t length) const;
  std::size_t endingAt(QStringView text, std::size_t position) const;
  // The first block that a change at `position` makes anew.
  Block firstChanged(std::size_t position) const;
  // A line that goes on behind `last` takes a short rest into `joined`; `last` is then that rest.
  void takeShortRest(QString& joined, Block& last) const;
  // What the page of `block` holds before it.
  Page pageBefore(const Block& block) const;
  // Adds what the page of `block` holds behind it, with the rows that it has.
  void addBlocksBehind(std::vector<Page>& pages, const Block& block) const;
  // Cuts `text` into blocks and adds them to `pages`.
  void addBlocks(std::vector<Page>& pages, QStringView text, bool isEndOfText) const;
  void addBlock(std::vector<Page>& pages, QStringView block, std::size_t ending) const;
  // True if `utf8` begins with the text, which is not empty and takes `bytes` of it.
  bool beginsWithThis(std::string_view utf8, std::size_t& bytes) const;

  Lines lines_;
  std::vector<Page> pages_;
  std::size_t length_ = 0;
  std::size_t columns_ = 80;
};

}  // namespace tarn
