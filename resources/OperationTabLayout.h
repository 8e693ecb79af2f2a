#pragma once

#include "platform/appkit/NSActivityBar.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"

#include <memory>

namespace tarn {

// The controls of one connection's tab. Owns all of them; every control has the name of its field. `view` has no parent
// until a tab shows it.
class OperationTabLayout final {
private:
  struct Widgets;
  std::unique_ptr<Widgets> widgets_;

public:
  OperationTabLayout();
  ~OperationTabLayout();

  NSView view;

  // Header.
  NSTextField labServerName;
  NSTextField labStatus;
  NSTextField labDealingQueue;
  NSButton btnReconnect;
  NSButton btnClose;
  NSActivityBar activityBar;

  // Key browser.
  NSTextField txtSearchKey;
  NSButton btnSearchKeyClear;
  NSButton chkExactly;
  NSPopUpButton popLimit;
  NSTableView tableKeys;
  NSPopUpButton popDatabase;
  NSPopUpButton popKeyDataCharset;
  NSTextField labKey;

  // Key form.
  NSTextField labType;
  NSPopUpButton popType;
  NSTextField txtKey;
  NSTextField txtTTL;
  NSTextField labKeySize;
  NSTextField labDataSize;
  NSButton chkTranslate;
  NSButton btnSave;
  NSButton btnNew;
  NSButton btnDelete;
  NSButton btnReload;
  NSPopUpButton popValueDataCharset;

  // String pane.
  NSView valueDataStringScrollView;
  NSTextView valueDataStringTxtView;

  // List and set pane.
  NSView valueDataSetScrollView;
  NSTableView valueDataSetTable;
  NSView setValueScrollView;
  NSTextView setValueTextView;
  NSTextField setValueLabel;

  // Hash pane.
  NSView valueDataHashScrollView;
  NSTableView valueDataHashTable;
  NSView hashKeyScrollView;
  NSTextView hashKeyTextView;
  NSTextField hashKeyLabel;
  NSView hashValueScrollView;
  NSTextView hashValueTextView;
  NSTextField hashValueLabel;

  // Sorted-set pane.
  NSView valueDataSortedSetScrollView;
  NSTableView valueDataSortedSetTable;
  NSView sortedSetValueScrollView;
  NSTextView sortedSetValueTextView;
  NSTextField sortedSetValueLabel;
  NSTextField sortedSetScoreTextField;
  NSTextField sortedSetScoreLabel;

  // Rows and console.
  NSButton btnDeleteSelectedRows;
  NSButton btnAddRow;
  NSView cliScrollView;
  NSTextView txtViewCli;
};

}  // namespace tarn
