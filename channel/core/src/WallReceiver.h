// SPDX-License-Identifier: MIT
#pragma once

#include "WallLink.h"
#include "frames/FrameLog.h"

#include <functional>
#include <vector>

/// A display's end of the wall: the log of the first channel's run, as it comes. It outlives the
/// runs, of which each is shown by a `Channel` of its own.
class WallReceiver {
public:
    /// The wall and the display that the options name. False, with one log line, when there is
    /// none.
    bool open(const Options& options);
    const wall::Display& getDisplay() const { return *m_display; }
    const wall::Wall& getWall() const { return m_link.getWall(); }
    wall::WallNetwork* getNetwork() { return m_link.getNetwork(); }

    /// From the beginning of the latest run on: waits for its head. False when it `is_stopped`, or
    /// with one log line when what comes is no run.
    bool begin(const std::function<bool()>& is_stopped);
    const frames::LogHead& getHead() const { return m_decoder.getHead(); }
    std::uint64_t getRun() const { return m_run; }

    /// What follows; `more`: nothing has come. As `LogDecoder::next`.
    frames::LogItem next(frames::FrameInput& input, std::vector<frames::PartDigest>& digests);
    /// Waits until something has come, or that many seconds have passed.
    void wait(double seconds) { m_subscriber->wait(seconds); }
    /// Nothing more comes of this run: there is a later one.
    bool isReplaced() const { return m_replaced; }
    /// Of what the first channel has sent, how much has been read, 0 to 1.
    double getPart() const;
    bool isConnected() const { return m_subscriber->isConnected(); }
    const std::string& getMessage() const { return m_decoder.getMessage(); }

    /// A run differs from the first channel's, or can't be read on. Whether that is the first time,
    /// and another try is due.
    bool noteDifference() { return m_differed++ == 0; }

private:
    bool readOn();

    WallLink m_link;
    const wall::Display* m_display = nullptr;
    std::unique_ptr<wall::Subscriber> m_subscriber; ///< goes before the link
    frames::LogDecoder m_decoder{""};
    std::uint64_t m_run = 0;          ///< 0: none yet
    std::vector<std::uint8_t> m_came; ///< and not been given to the decoder; of the run that
                                      ///< replaces this one, when one does
    std::uint64_t m_given = 0;        ///< to the decoder, bytes of the run
    bool m_replaced = false;
    int m_differed = 0; ///< times in this run
};
