#pragma once

#include "basalt/FileFacts.h"
#include "basalt/FolderHandle.h"
#include "cinder/TarName.h"

#include <string>
#include <vector>

/// The files and folders of a workspace at one moment, by name and facts. No link is followed.
class WorkspaceTree final {
  public:
    struct Item {
        std::string name; ///< below the workspace, "/" between its parts
        FileFacts facts;
    };

    /// Looks a folder over. @throws HttpError with status 500 when it cannot be read or nests too deep
    explicit WorkspaceTree(const FolderHandle& root);

    /// In each folder its files by name, then its folders by name, each followed by what it holds.
    [[nodiscard]] const std::vector<Item>& Items() const { return items; }
    [[nodiscard]] const LeftOut& LinksLeftOut() const { return leftOut; }

  private:
    void Add(const FolderHandle& folder, const std::string& prefix, std::size_t depth);

    std::vector<Item> items;
    LeftOut leftOut;
};
