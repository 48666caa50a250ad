#include "ingest/local_sources.h"

#include "core/files.h"
#include "core/flag_scope.h"

#include <string>
#include <utility>

namespace tremor {

namespace {

struct LocatorTexts {
    std::string_view started;
    std::string_view complete;
};

constexpr LocatorTexts livelocTexts = {"Import liveloc...", "Import from LIVELOC COMPLETE"};
constexpr LocatorTexts seisCompTexts = {"Import Seiscomp...", "Import from Seiscomp COMPLETE"};

std::vector<FolderEntry> subfolders(const std::string& path) {
    std::vector<FolderEntry> entries;
    for (const std::string& name : listFolders(path)) {
        std::string fullPath = joinPath(path, name);
        std::string behindPath = fullPath.substr(path.size());
        entries.push_back({std::move(behindPath), std::move(fullPath), {}});
    }
    return entries;
}

} // namespace

LocalSources::LocalSources(FeedContext context, LivelocSource& liveloc, SeisCompSource& seisComp)
    : context_(std::move(context)), liveloc_(liveloc), seisComp_(seisComp) {}

void LocalSources::ListFolder(std::string_view path) {
    ProcedureTrace trace(context_.errors, "Form - panel", "ListFolder");
    const bool isLiveloc = context_.settings.SeisCompOrLIVELOC != 0;
    const LocatorTexts& texts = isLiveloc ? livelocTexts : seisCompTexts;
    {
        const FlagScope importing(context_.session.ImportInProgress);
        context_.status.setStatusText(texts.started);
        if (!PathExists(path) || FileExists(path)) {
            context_.log.addLogToList("Local source not available.");
            return;
        }
        std::vector<FolderEntry> folders;
        trace.step([&] { folders = subfolders(std::string(path)); });
        if (isLiveloc)
            liveloc_.readLivelocSfile(folders);
        else
            seisComp_.readSeisCompVers2_6(false, std::move(folders));
    }
    context_.status.setStatusText(texts.complete);
}

} // namespace tremor
