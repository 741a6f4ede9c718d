// SPDX-License-Identifier: MIT
#include "tools/hwctl_process.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <csignal>
#include <sstream>
#include <stdexcept>

namespace TestSupport
{

namespace
{

/// Longest time for one run, which no healthy one needs.
constexpr int PatienceMilliseconds = 60000;

} // namespace

std::vector<std::string> HwctlRun::GetLines() const
{
    std::vector<std::string> lines;
    std::istringstream text(out);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

HwctlRun RunHwctl(const std::vector<std::string>& arguments,
                  const std::vector<std::string>& environment, const std::string& interruptAfter,
                  const std::string& inputFile, const std::string& outputFile)
{
    QProcess process;
    if (!inputFile.empty())
        process.setStandardInputFile(QString::fromStdString(inputFile));
    if (!outputFile.empty())
        process.setStandardOutputFile(QString::fromStdString(outputFile));
    QStringList list;
    for (const std::string& argument : arguments)
        list << QString::fromStdString(argument);
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.remove("HWCTL_LOG");
    for (const std::string& variable : environment) {
        const auto equals = variable.find('=');
        variables.insert(QString::fromStdString(variable.substr(0, equals)),
                         QString::fromStdString(variable.substr(equals + 1)));
    }
    process.setProcessEnvironment(variables);
    process.start(HWCTL_PROGRAM, list);
    std::string out;
    if (!interruptAfter.empty()) {
        while (out.find(interruptAfter) == std::string::npos &&
               process.waitForReadyRead(PatienceMilliseconds))
            out += process.readAllStandardOutput().toStdString();
        // It may have ended by itself; 0 would be everybody in this process group.
        if (process.processId() > 0)
            kill(static_cast<pid_t>(process.processId()), SIGINT);
    }
    if (!process.waitForFinished(PatienceMilliseconds)) {
        process.kill();
        throw std::runtime_error("hwctl does not end");
    }
    out += process.readAllStandardOutput().toStdString();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, out,
            process.readAllStandardError().toStdString()};
}

} // namespace TestSupport
