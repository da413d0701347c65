#include "apps/gpsbook/book/SharedBook.h"

#include <filesystem>
#include <iostream>

#include "apps/gpsbook/commands/CommandError.h"
#include "host/cloud/Device.h"
#include "host/cloud/SqliteStore.h"
#include "platform/entity/CCloudManager.h"

namespace gpsbook {

namespace {

namespace fs = std::filesystem;

/// Of the file itself, where the name of the book is a link.
fs::path FolderOf(const std::string& book) { return fs::weakly_canonical(fs::absolute(book)).parent_path(); }

}  // namespace

void UseOwnDevice(gpsproject::Project& project) {
    if (project.GetCloud().IsLinked()) CCloudManager::GetInstance()->SetDevId(gpssync::OwnDevice());
}

std::string StoreToRemember(const std::string& book, const std::string& given) {
    const fs::path store(given);
    if (store.is_absolute()) return store.lexically_normal().string();
    const fs::path whole = fs::absolute(store);
    const fs::path file = fs::weakly_canonical(whole.parent_path()) / whole.filename();
    return file.lexically_relative(FolderOf(book)).string();
}

std::string StoreFile(const std::string& book, const std::string& remembered) {
    const fs::path store(remembered);
    return store.is_absolute() ? remembered : (FolderOf(book) / store).lexically_normal().string();
}

std::unique_ptr<gpssync::Transport> OpenStoreOf(const std::string& book, const std::string& remembered,
                                                bool make) {
    const std::string file = StoreFile(book, remembered);
    std::error_code failed;
    // A new store in the place of one that is missing would know nothing of the project.
    if (!make && fs::status(file, failed).type() == fs::file_type::not_found)
        throw CommandError(exitNotFound, file +
                                             ": there is no such store; connect its disk, or give its new "
                                             "place with --store");
    return gpssync::OpenStore(file);
}

void SaveSynced(gpsproject::Project& project) {
    try {
        project.GetEdits().Commit();
    } catch (const gpsproject::ProjectError&) {
        // The save that follows promises more than the journal could.
    }
    project.GetBook().SetModifiedFlag(true);
    project.Save();
    for (const std::string& note : project.GetNotes())
        std::cerr << "note: " << project.GetPath() << ": not kept, version " << project.GetStreamVersion()
                  << " has no place for it: " << note << '\n';
}

}  // namespace gpsbook
