#pragma once

#include "basalt/FileFacts.h"
#include "basalt/FolderHandle.h"
#include "cinder/TarName.h"

#include <string>
#include <vector>

/// The names and attributes of the files and folders of a workspace at one moment. No link is followed.
class WorkspaceTree final {
  public:
    struct Item {
        std::string name; ///< relative to the workspace, with "/" between its parts
        FileFacts facts;
    };

    /// Lists a folder. @throws HttpError with status 500 when it cannot be read or is nested too deep
    explicit WorkspaceTree(const FolderHandle& root);

    /// The files of each folder by name, then its folders by name, each followed by its content.
    [[nodiscard]] const std::vector<Item>& Items() const { return items; }
    [[nodiscard]] const LeftOut& LinksLeftOut() const { return leftOut; }

  private:
    void Add(const FolderHandle& folder, const std::string& prefix, std::size_t depth);

    std::vector<Item> items;
    LeftOut leftOut;
};
