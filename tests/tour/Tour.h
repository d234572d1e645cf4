#pragma once

#include "Stage.h"
#include "document/formats/TrackPath.h"

#include <string>
#include <vector>

/// The main job from end to end, as an operator does it. Each scenario prints its steps and throws when one
/// does not do what it says. The working directory holds "station.osbak" and "fault.trk", which are edited.
class Tour {
  public:
    /// @param workspace the folder that the sensor server on loopback serves
    Tour(Stage& stage, std::string workspace);

    /// Every scenario; called from a thread of its own.
    void Run();

    /// A backup file edited, and a track of a very long name: what may look different on another desktop. The
    /// window never leaves the screen. Called from a thread of its own.
    void RunMainScenario();

  private:
    void EditABackupFile();
    /// @param name the file of the text track
    void EditAnExternalTrack(const std::string& name);
    void EditAServersWorkspace();

    void Load(const QString& name);
    void DrawAPath();
    void DragItsLastPoint();
    void SetParameters();
    void HideAndShowTheRuler();
    /// Saves, and compares the file with the canvas, then the canvas with the file loaded again.
    void SaveAndReload(const QString& name);
    void WaitForStatus(const QString& text) const;

    Stage& stage;
    std::string workspace;
};
