// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/CAudioPieces.h"

#include "Audio/CAudioProcessTerminalBase.h"
#include "Audio/CSampleBufferPool.h"

#include <algorithm>
#include <utility>

namespace qrb {

namespace {

/// Longer pieces waste the begin and the end of a block, where only one of the nodes runs; shorter ones cost calls.
constexpr int kLongestPiece = 128;

} // namespace

CAudioPieces::CAudioPieces(std::span<CAudioProcessBase* const> nodes, int length) : m_length(length)
{
    const int count = (length + kLongestPiece - 1) / kLongestPiece;
    m_pieceLength = (length + count - 1) / count;
    m_pieceCount = (length + m_pieceLength - 1) / m_pieceLength;
    for (CAudioProcessBase* const base : nodes) {
        CNode& node = m_nodes.emplace();
        node.node = static_cast<CAudioProcessTerminalBase*>(base);
        node.node->takeWholeBlock(length, node.inputs);
        for (const auto& instance : node.node->instances()) {
            for (int i = 0; i < instance->outputCount(); ++i) {
                node.outputs.append(base->pool().get(length));
            }
        }
    }
}

int CAudioPieces::lengthOf(int piece) const
{
    return std::min(m_pieceLength, m_length - piece * m_pieceLength);
}

void CAudioPieces::begin(CNode& node, int piece, CArray<CAudioModule*, 16>& modules)
{
    const int start = piece * m_pieceLength;
    node.node->takePiece(node.inputs.span(), start, lengthOf(piece));
    CSampleBuffer* outputs = node.outputs.data();
    for (const auto& instance : node.node->instances()) {
        modules.append(&instance->beginPiece(lengthOf(piece), outputs, start));
        outputs += instance->outputCount();
    }
}

void CAudioPieces::end(CNode& node, int piece)
{
    const int start = piece * m_pieceLength;
    int line = 0;
    for (const auto& instance : node.node->instances()) {
        for (CSampleBuffer& buffer : instance->endSettled()) {
            CSampleBuffer& whole = node.outputs[static_cast<std::size_t>(line)];
            if (!buffer.sharesSamplesWith(whole)) {
                const CSampleBuffer samples = node.node->pool().getWhole(buffer, lengthOf(piece));
                std::copy_n(samples.data(), lengthOf(piece), whole.data() + start);
            }
            node.node->output().sendPlanned(line++, std::move(buffer), lengthOf(piece));
        }
    }
    // What it sends goes to others: its own inputs are those of the next piece only if they came before it ran.
    node.node->releasePlannedInputs();
}

void CAudioPieces::finish(CNode& node)
{
    int line = 0;
    for (CSampleBuffer& buffer : node.outputs) {
        node.node->output().sendPlanned(line++, std::move(buffer), m_length);
    }
    for (const auto& instance : node.node->instances()) {
        instance->endPieces();
    }
}

void CAudioPieces::run()
{
    CNode& first = m_nodes[0];
    CNode& last = m_nodes.back();
    for (int piece = 0; piece <= m_pieceCount; ++piece) {
        CArray<CAudioModule*, 16> modules;
        const bool hasFirst = piece < m_pieceCount;
        const bool hasLast = piece > 0;
        const bool isTogether = hasFirst && hasLast && lengthOf(piece) == lengthOf(piece - 1);
        const auto runModules = [&modules] {
            for (CAudioModule* const module : modules) {
                module->process();
            }
            modules.clear();
        };
        if (hasLast) {
            begin(last, piece - 1, modules);
            if (!isTogether) {
                runModules();
            }
        }
        if (hasFirst) {
            begin(first, piece, modules);
        }
        if (isTogether) {
            modules[0]->processTogether(modules.span());
            modules.clear();
        } else {
            runModules();
        }
        if (hasLast) {
            end(last, piece - 1);
        }
        if (!hasFirst) {
            continue;
        }
        end(first, piece);
        for (std::size_t i = 1; i + 1 < m_nodes.size(); ++i) {
            begin(m_nodes[i], piece, modules);
            runModules();
            end(m_nodes[i], piece);
        }
    }
    for (CNode& node : m_nodes) {
        finish(node);
    }
    for (CNode& node : m_nodes) {
        node.node->releasePlannedInputs();
        static_cast<void>(node.node->input().takeBlockLength());
    }
}

} // namespace qrb
