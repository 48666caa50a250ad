#pragma once

#include "ingest/import_rules.h"
#include "ingest/liveloc_source.h"
#include "ingest/seiscomp_source.h"

#include <string_view>

// The local locators: one folder tree, read by the reader that the settings name.
namespace tremor {

class LocalSources {
  public:
    // Both readers outlive this object.
    LocalSources(FeedContext context, LivelocSource& liveloc, SeisCompSource& seisComp);

    // Lists the subfolders of `path`, the root of the tree as the settings have it, and hands them
    // to the reader of SeisCompOrLIVELOC (1: S-files, 0: SeisComP). Says on the status line what is
    // read, and "Local source not available." in the log when there is no such folder.
    // ImportInProgress is true meanwhile; no message is pumped.
    void ListFolder(std::string_view path);

  private:
    FeedContext context_;
    LivelocSource& liveloc_;
    SeisCompSource& seisComp_;
};

} // namespace tremor
