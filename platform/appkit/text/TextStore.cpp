#include "platform/appkit/text/TextStore.h"

#include "platform/appkit/Utf8.h"
#include "platform/foundation/Utf8.h"

#include <QStringEncoder>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <iterator>

namespace tarn {

namespace {

constexpr std::size_t pageLength = std::size_t{32} * 1024;

// Where to cut a line that goes on: behind a blank or between two graphemes, if such a position is near `limit`.
std::size_t cutBefore(QStringView text, std::size_t limit) {
  constexpr std::size_t searched = 100;
  for (std::size_t at = limit; at > limit - searched; --at) {
    if (text[qsizetype(at - 1)] == u' ' && text[qsizetype(at)] != u' ') return at;
  }
  const QStringView near = text.mid(qsizetype(limit - searched), qsizetype(searched) + 2);
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, near.data(), near.size());
  finder.setPosition(qsizetype(searched));
  if (!finder.isAtBoundary()) finder.toPreviousBoundary();
  if (finder.position() > 0) return limit - searched + std::size_t(finder.position());
  return text[qsizetype(limit)].isLowSurrogate() && text[qsizetype(limit - 1)].isHighSurrogate() ? limit - 1 : limit;
}

// Where the line that goes on at `from` ends; `to` if that is further.
std::size_t findLineEnd(QStringView text, std::size_t from, std::size_t to) {
  const char16_t* const units = text.utf16();
  for (; from < to; ++from) {
    const char16_t unit = units[from];
    if (unit == u'\n' || unit == u'\r' || (unit & 0xFFFE) == 0x2028) break;
  }
  return from;
}

// Takes the next part of `utf8` off, whole characters, so that a long text is decoded a part at a time.
std::string_view takePart(std::string_view& utf8) {
  constexpr std::size_t longestPart = std::size_t{256} * 1024;
  const std::string_view part = utf8Prefix(utf8, longestPart);
  utf8.remove_prefix(part.size());
  return part;
}

}  // namespace

TextStore::TextStore(Lines lines) : lines_(lines) {
  addBlocks(pages_, {}, true);
}

QString TextStore::text(std::size_t position, std::size_t length) const {
  QString result;
  if (position >= length_) return result;
  length = std::min(length, length_ - position);
  result.reserve(qsizetype(length));
  for (const Page& page : pages_) {
    if (length == 0) break;
    if (position >= page.length()) {
      position -= page.length();
      continue;
    }
    const std::size_t count = std::min(length, page.length() - position);
    result += QStringView(page.text).mid(qsizetype(position), qsizetype(count));
    length -= count;
    position = 0;
  }
  return result;
}

std::string TextStore::utf8(std::size_t position) const {
  std::string result;
  result.reserve(length_ - std::min(position, length_));
  QStringEncoder encode(QStringConverter::Utf8);
  for (const Page& page : pages_) {
    if (position >= page.length()) {
      position -= page.length();
      continue;
    }
    const QByteArray part = encode(QStringView(page.text).mid(qsizetype(position)));
    result.append(part.data(), std::size_t(part.size()));
    position = 0;
  }
  return result;
}

char16_t TextStore::at(std::size_t position) const {
  for (const Page& page : pages_) {
    if (position < page.length()) return page.text[qsizetype(position)].unicode();
    position -= page.length();
  }
  return 0;
}

void TextStore::replace(std::size_t position, std::size_t length, QStringView replacement) {
  position = std::min(position, length_);
  length = std::min(length, length_ - position);
  if (length == 0 && replacement.isEmpty()) return;

  const Block first = firstChanged(position);
  Block last = blockAt(position + length);
  QString joined = text(first.start, position - first.start);
  joined += replacement;
  joined += text(position + length, last.end() - position - length);
  takeShortRest(joined, last);

  std::vector<Page> changed{pageBefore(first)};
  addBlocks(changed, joined, !hasNext(last));
  addBlocksBehind(changed, last);
  std::erase_if(changed, [](const Page& page) { return page.pieces.empty(); });
  const auto begin = pages_.begin() + std::ptrdiff_t(first.page);
  const auto end = pages_.begin() + std::ptrdiff_t(last.page) + 1;
  const auto after = pages_.erase(begin, end);
  pages_.insert(after, std::make_move_iterator(changed.begin()), std::make_move_iterator(changed.end()));
  length_ = length_ - length + std::size_t(replacement.size());
}

// What goes before may be one line with the new text, or its CR one line end with a new LF.
TextStore::Block TextStore::firstChanged(std::size_t position) const {
  const Block at = blockAt(position);
  if (position != at.start || !hasPrevious(at)) return at;
  const Block before = previous(at);
  return isContinued(before) || this->at(before.end() - 1) == u'\r' ? before : at;
}

// So that many small changes leave no crumbs.
void TextStore::takeShortRest(QString& joined, Block& last) const {
  if (!isContinued(last) || !hasNext(last)) return;
  const Block behind = next(last);
  if (std::size_t(joined.size()) % longestBlock + behind.length > longestBlock) return;
  joined += text(behind.start, behind.length);
  last = behind;
}

TextStore::Page TextStore::pageBefore(const Block& block) const {
  const Page& page = pages_[block.page];
  Page before;
  std::size_t length = 0;
  for (std::size_t i = 0; i < block.index; ++i) {
    before.pieces.push_back(page.pieces[i]);
    before.rows += page.pieces[i].rows;
    length += page.pieces[i].length;
  }
  before.text = page.text.left(qsizetype(length));
  return before;
}

void TextStore::addBlocksBehind(std::vector<Page>& pages, const Block& block) const {
  const Page& from = pages_[block.page];
  std::size_t at = 0;
  for (std::size_t i = 0; i < from.pieces.size(); ++i) {
    const Piece& piece = from.pieces[i];
    if (i > block.index) {
      addBlock(pages, QStringView(from.text).mid(qsizetype(at), piece.length), piece.ending);
      Page& page = pages.back();
      page.rows += piece.rows;
      page.rows -= page.pieces.back().rows;
      page.pieces.back().rows = piece.rows;
    }
    at += piece.length;
  }
}

bool TextStore::set(std::string_view utf8) {
  std::size_t bytes = 0;
  const bool onlyAdds = beginsWithThis(utf8, bytes);
  if (!onlyAdds) {
    bytes = 0;
    pages_.clear();
    length_ = 0;
    addBlocks(pages_, {}, true);
  }
  utf8.remove_prefix(bytes);
  append(utf8);
  return onlyAdds;
}

void TextStore::append(std::string_view utf8) {
  while (!utf8.empty())
    replace(length_, 0, toQString(takePart(utf8)));
}

bool TextStore::beginsWithThis(std::string_view utf8, std::size_t& bytes) const {
  if (length_ == 0 || utf8.size() < length_) return false;
  QStringEncoder encode(QStringConverter::Utf8);
  for (const Page& page : pages_) {
    const QByteArray part = encode(page.text);
    const std::string_view own(part.data(), std::size_t(part.size()));
    if (utf8.substr(bytes, own.size()) != own) return false;
    bytes += own.size();
  }
  return true;
}

TextStore::Block TextStore::blockOf(std::size_t page, std::size_t index, std::size_t start) const {
  const Piece& piece = pages_[page].pieces[index];
  return {page, index, start, piece.length, piece.ending, piece.rows};
}

TextStore::Block TextStore::lastBlock() const {
  const Page& page = pages_.back();
  return blockOf(pages_.size() - 1, page.pieces.size() - 1, length_ - page.pieces.back().length);
}

TextStore::Block TextStore::blockAt(std::size_t position) const {
  if (position >= length_) return lastBlock();
  std::size_t start = 0;
  std::size_t page = 0;
  while (position >= start + pages_[page].length())
    start += pages_[page++].length();
  std::size_t index = 0;
  while (position >= start + pages_[page].pieces[index].length)
    start += pages_[page].pieces[index++].length;
  return blockOf(page, index, start);
}

bool TextStore::hasNext(const Block& block) const {
  return block.page + 1 < pages_.size() || block.index + 1 < pages_[block.page].pieces.size();
}

bool TextStore::hasPrevious(const Block& block) const {
  return block.page > 0 || block.index > 0;
}

TextStore::Block TextStore::next(const Block& block) const {
  if (block.index + 1 < pages_[block.page].pieces.size()) return blockOf(block.page, block.index + 1, block.end());
  return blockOf(block.page + 1, 0, block.end());
}

TextStore::Block TextStore::previous(const Block& block) const {
  const std::size_t page = block.index > 0 ? block.page : block.page - 1;
  const std::size_t index = block.index > 0 ? block.index - 1 : pages_[page].pieces.size() - 1;
  return blockOf(page, index, block.start - pages_[page].pieces[index].length);
}

std::size_t TextStore::rowsBefore(const Block& block) const {
  std::size_t rows = 0;
  for (std::size_t page = 0; page < block.page; ++page)
    rows += pages_[page].rows;
  for (std::size_t index = 0; index < block.index; ++index)
    rows += pages_[block.page].pieces[index].rows;
  return rows;
}

std::size_t TextStore::rows() const {
  std::size_t rows = 0;
  for (const Page& page : pages_)
    rows += page.rows;
  return rows;
}

TextStore::Block TextStore::blockAtRow(std::size_t& row) const {
  std::size_t start = 0;
  std::size_t page = 0;
  while (page + 1 < pages_.size() && row >= pages_[page].rows) {
    row -= pages_[page].rows;
    start += pages_[page++].length();
  }
  const std::vector<Piece>& pieces = pages_[page].pieces;
  std::size_t index = 0;
  while (index + 1 < pieces.size() && row >= pieces[index].rows) {
    row -= pieces[index].rows;
    start += pieces[index++].length;
  }
  row = std::min<std::size_t>(row, pieces[index].rows - 1);
  return blockOf(page, index, start);
}

void TextStore::setRows(Block& block, std::size_t rows) {
  Page& page = pages_[block.page];
  Piece& piece = page.pieces[block.index];
  page.rows = page.rows - piece.rows + rows;
  piece.rows = std::uint32_t(rows);
  block.rows = rows;
}

void TextStore::setColumns(std::size_t columns) {
  columns_ = std::max<std::size_t>(columns, 1);
  for (Page& page : pages_) {
    page.rows = 0;
    for (Piece& piece : page.pieces) {
      piece.rows = estimatedRows(piece.length - piece.ending);
      page.rows += piece.rows;
    }
  }
}

std::uint32_t TextStore::estimatedRows(std::size_t length) const {
  return std::uint32_t(std::max<std::size_t>(1, (length + columns_ - 1) / columns_));
}

std::size_t TextStore::endingAt(QStringView text, std::size_t position) const {
  if (lines_ == Lines::one) return 0;
  switch (text[qsizetype(position)].unicode()) {
    case u'\r':
      return position + 1 < std::size_t(text.size()) && text[qsizetype(position + 1)] == u'\n' ? 2 : 1;
    case u'\n':
    case u'\u2028':
    case u'\u2029':
      return 1;
    default:
      return 0;
  }
}

void TextStore::addBlocks(std::vector<Page>& pages, QStringView text, bool isEndOfText) const {
  const std::size_t length = std::size_t(text.size());
  std::size_t start = 0;
  std::size_t ending = 0;
  while (start < length) {
    // Leaves room for a line's end of two.
    const std::size_t limit = std::min(length, start + longestBlock - 2);
    std::size_t end = lines_ == Lines::many ? findLineEnd(text, start, limit) : limit;
    ending = end < length ? endingAt(text, end) : 0;
    if (ending == 0 && end < length) end = start + cutBefore(text.mid(qsizetype(start)), end - start);
    addBlock(pages, text.mid(qsizetype(start), qsizetype(end + ending - start)), ending);
    start = end + ending;
  }
  if (isEndOfText && (length == 0 || ending > 0)) addBlock(pages, {}, 0);
}

void TextStore::addBlock(std::vector<Page>& pages, QStringView block, std::size_t ending) const {
  if (pages.empty() || pages.back().length() + std::size_t(block.size()) > pageLength) pages.emplace_back();
  Page& page = pages.back();
  const std::uint32_t rows = estimatedRows(std::size_t(block.size()) - ending);
  page.text += block;
  page.pieces.push_back({std::uint32_t(block.size()), rows, std::uint8_t(ending)});
  page.rows += rows;
}

}  // namespace tarn
