// CommitStore: commits points to a project of a store, which it makes when it is not there; for tests that
// let the system refuse something meanwhile.
#include <iostream>
#include <string>

#include "host/cloud/SqliteStore.h"
#include "tests/host/cloud/Records.h"

int main(int count, char** arguments) {
    if (count != 2) return 2;
    try {
        const auto server = gpssync::OpenStore(arguments[1]);
        const std::string key = server->OpenProject("site", true).key;
        std::vector<std::string> records(60, test::Point(-1));
        records.insert(records.begin(), test::Group());
        server->Commit(key, {1, "Anna"}, test::Commit(std::string(32, 'a'), 0, test::Records(records)));
    } catch (const gpssync::TransportError& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
    return 0;
}
