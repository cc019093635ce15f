// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace ig {

/// A part of a built world that is made at one go: its heights, its imagery, its land cover.
/// `WorldBuilder` owns the stages and calls them in their order, each as it stands here. What they
/// write lies in the folder of the built world. A failure is one sentence with the cause and the
/// remedy; the builder adds the stage, and what was made until then stays for the next run.
class BuildStage {
public:
    virtual ~BuildStage() = default;
    /// One word, the same in every version: "heights". It stands in progress lines, in the
    /// builder's notes, and over the stage's entries in the folder's description.
    virtual const char* getName() const = 0;
    /// The files that the stage reads, for the fingerprint of the built world: those that the world
    /// file names and those that they lead to (parts of a mosaic, what stands beside a raster).
    virtual std::vector<std::string> getSources() const = 0;

    /// Looks at the sources and divides the work. `folder` exists and ends without a slash.
    virtual bool open(const std::string& folder, std::string& failure) = 0;
    /// How many steps there are, after `open`: as many whenever the sources are the same. Each is a
    /// second's work or so: a run that is stopped loses the one under way.
    virtual int getNumSteps() const = 0;
    /// Whether what an earlier run has made in a step that it finished is still there.
    virtual bool isThere(int step) const = 0;
    /// Does one step, from 0. Those that an earlier run has finished are left out; one that was
    /// interrupted is done again, over what it has left.
    virtual bool make(int step, std::string& failure) = 0;
    /// Puts what all steps have made in its place, under the names that loading looks for.
    virtual bool close(std::string& failure) = 0;
    /// What loading wants to know beyond the files, for the folder's description: lines "key:
    /// value" of YAML. After `close`.
    virtual std::vector<std::string> describe() const { return {}; }
};

} // namespace ig
