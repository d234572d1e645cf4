#pragma once

#include "basalt/FileLock.h"
#include "basalt/FolderHandle.h"

#include <string>
#include <vector>

/// Where OpenLockFolders looks.
struct LockFolderRoots {
    std::string runtime = "/run/user"; ///< holds a folder for each user who has logged in
    std::string shared = "/tmp";       ///< everybody may make files in it
};

/// The folders in which this user's processes find each other's locks, in an order that is the same for all
/// of them. Each belongs to this user, and nobody else may enter it, so that nobody else can take a lock, or
/// put a link or a file in its place.
///
/// No environment variable decides on them: two processes of one user may have different ones, or none, and
/// would miss each other. No single place does either. /run/user/UID exists only where a session manager made
/// it, perhaps between two starts; a folder in /tmp may be removed by whoever tidies up there; the home
/// folder may be read-only, absent, or on a server whose locks reach other machines; the name of an abstract
/// socket can be taken by any user first, and is another one in each network namespace. So there are two
/// places, /run/user/UID and a folder in /tmp, and a lock is to be taken in all that can be used: two
/// processes miss each other only if they have none in common. A folder of another user under the name in
/// /tmp blocks nobody: this user's gets another name, and is found by its owner.
///
/// The variable CORVANE_INSTANCE names one folder to be used instead: processes with different ones do not
/// see each other's locks. It has to be an absolute path of a folder that is this user's alone.
/// @return none where the system gives no such folder
std::vector<FolderHandle> OpenLockFolders(const LockFolderRoots& roots = {});

/// Takes the lock on the file `name` in every folder that can have it, without waiting. Of any number of
/// processes at once, exactly one takes it where all have a folder in common.
/// @param locks gets the locks; none unless they are taken
/// @return HeldByAnother when that is so in any of the folders; Failed when no folder gives a file to lock
FileLock::State TakeLock(const std::vector<FolderHandle>& folders, const std::string& name,
                         std::vector<FileLock>& locks);
