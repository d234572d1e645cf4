#pragma once

#include "basalt/FileLock.h"
#include "basalt/FolderHandle.h"

#include <string>
#include <vector>

/// The folders that OpenLockFolders searches.
struct LockFolderRoots {
    std::string runtime = "/run/user"; ///< holds a folder for each user who has logged in
    std::string shared = "/tmp";       ///< everybody may create files in it
};

/// The folders in which this user's processes find each other's locks, in the same order for all of them.
/// Each belongs to this user, and nobody else may enter it, so that nobody else can take a lock, or put a
/// link or a file in its place.
///
/// They do not depend on an environment variable: two processes of one user may have different values, or
/// none, and would miss each other. No single place is sufficient either: /run/user/UID exists only where a
/// session manager made it, perhaps between two starts; a folder in /tmp may be removed by a cleaner; the
/// home folder may be read-only, absent, or on a server whose locks reach other machines; the name of an
/// abstract socket can be taken by any user first, and differs in each network namespace. So there are two
/// places, /run/user/UID and a folder in /tmp, and a lock must be taken in all that can be used: two
/// processes miss each other only if they have none in common. A folder of another user under the name in
/// /tmp blocks nobody: this user's gets another name, and is recognised by its owner.
///
/// The variable CORVANE_INSTANCE names one folder that is used instead: processes with different ones do not
/// see each other's locks. It must be the absolute path of a folder private to this user.
/// @return none if no such folder can be used
std::vector<FolderHandle> OpenLockFolders(const LockFolderRoots& roots = {});

/// Takes the lock on the file `name` in every folder where that is possible, without waiting. Of any number
/// of concurrent processes, exactly one takes it if all have a folder in common.
/// @param locks gets the locks; empty unless they are taken
/// @return HeldByAnother when it is held in any of the folders; Failed when no folder has a file to lock
FileLock::State TakeLock(const std::vector<FolderHandle>& folders, const std::string& name,
                         std::vector<FileLock>& locks);
