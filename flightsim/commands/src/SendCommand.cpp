// SPDX-License-Identifier: MIT
#include "CommandHelp.h"
#include "Send.h"
#include "flightsim/commands/Commands.h"
#include "flightsim/recording/FieldTools.h"
#include "program/DataFolder.h"
#include "program/Process.h"

#include <memory>

namespace flightsim {

namespace {

/// What may be given: a row for each field.
int listFields() {
    for (const WireField& field : fieldsOf(false)) {
        if (field.use == WireField::Use::RESERVED) continue;
        std::printf("%-20s %-8s %-8s %s", std::string(field.name).c_str(),
                    std::string(field.getTypeName()).c_str(), std::string(field.unit).c_str(),
                    std::string(field.meaning).c_str());
        const char* separator = " (";
        for (const WireCode& code : field.codes) {
            std::printf("%s%s", separator, std::string(code.name).c_str());
            separator = ", ";
        }
        std::printf(field.codes.empty() ? "\n" : ")\n");
    }
    std::string message;
    return program::endOutput(message) ? 0 : printFailure("send", message);
}

int runSend(const SendOptions& options) {
    return runUntilStopped<Send>("send", options, [&](const Send& send) {
        printWarning("send", send.getWarning());
        if (options.rate > 0) printLink(send.getLink());
    });
}

} // namespace

void addSend(CLI::App& app, Command& command) {
    const auto options = std::make_shared<SendOptions>();
    const auto list = std::make_shared<bool>(false);
    CLI::App* sub = app.add_subcommand("send", "Send a record with the fields that are given");
    sub->footer(
        "Every record says everything anew: what is not given is fair weather and a helicopter\n"
        "on the pad of the demo world, or what a record of a recording holds (--base). A value\n"
        "is a number, or the name of a code. Without --rate one record is sent and no feedback\n"
        "received; with it, a steady stream, of which the first record alone has the command.\n"
        "\n"
        "Examples:\n"
        "  flight_sim send command=reset\n"
        "  flight_sim send weather_type=storm sea_code=6 altitude=60 --rate 60\n"
        "  flight_sim send --base flight.hrec --record 1500 rain_level=heavy\n"
        "Ctrl-C ends a stream in order, with the summary.");
    sub->add_option("FIELD", options->values, "What the record is to say")
        ->type_name("FIELD=VALUE ...");
    sub->add_flag("--list", *list, "Only list the fields, their types, units, meanings and codes");
    auto* rate = sub->add_option("--rate", options->rate, "Records a second (default: one, once)")
                     ->type_name("HZ")
                     ->check(numberBetween(1, 1000));
    addSeconds(*sub, "--seconds", options->seconds, "Stop after so long (default: when stopped)")
        ->needs(rate);
    auto* base = sub->add_option("--base", options->base,
                                 "The recording, or frame log, with the values not given")
                     ->type_name("FILE");
    sub->add_option("--record", options->base_record, "Number of its record, counted from 0")
        ->type_name("N")
        ->capture_default_str()
        ->check(numberBetween(0, 1e15))
        ->needs(base);
    addLinkOptions(*sub, options, options->link);
    for (const char* name : {"--listen", "--no-feedback", "--feedback", "--quiet"})
        sub->get_option(name)->needs(rate);
    sub->callback([options, list, &command] {
        if (!options->base.empty()) options->base = program::findShippedFile(options->base);
        command = [options, list] { return *list ? listFields() : runSend(*options); };
    });
}

} // namespace flightsim
