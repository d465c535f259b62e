// SPDX-License-Identifier: GPL-3.0-or-later
#include "Audio/AudioCreators.h"

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"
#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessLinkDef.h"
#include "Audio/Converters/CAudioParamConverterBW.h"
#include "Audio/Converters/CAudioParamConverterEnum.h"
#include "Audio/Converters/CAudioParamConverterFreq.h"
#include "Audio/Converters/CAudioParamConverterGain.h"
#include "Audio/Converters/CAudioParamConverterPercent.h"
#include "Audio/Converters/CAudioParamConverterRatio.h"
#include "Audio/Converters/CAudioParamConverterReal.h"
#include "Audio/Converters/CAudioParamConverterText.h"
#include "Audio/Converters/CAudioParamConverterTime.h"
#include "Audio/Filters/CAudioFilterBypassGen.h"
#include "Audio/Filters/CAudioFilterFIRLPGen.h"
#include "Audio/Filters/CAudioFilterGenArray.h"
#include "Audio/Filters/CAudioFilterGenArrayItem.h"
#include "Audio/Filters/CAudioFilterHBFGen.h"
#include "Audio/Filters/CAudioFilterLPHP1Gen.h"
#include "Audio/Filters/CAudioFilterMagnusGen.h"
#include "Audio/Filters/CAudioFilterRBJGen.h"
#include "Audio/Filters/CAudioFilterSerialGen.h"
#include "Audio/Filters/CAudioFilterSerialGenItem.h"
#include "Audio/HostParams/CAudioCCTable.h"
#include "Audio/HostParams/CAudioExtParam.h"
#include "Audio/HostParams/CAudioExtParamList.h"
#include "Audio/Interface/CAudioInterfaceBase.h"
#include "Audio/Interface/CAudioInterfaceClient.h"
#include "Audio/Interface/CParamInterfaceBaseConnectorUni.h"
#include "Audio/Interface/CParamInterfaceClientConnectorUni.h"
#include "Audio/ParamFilters/CAudioParamFilterAComp.h"
#include "Audio/ParamFilters/CAudioParamFilterBypassGroupSolo.h"
#include "Audio/ParamFilters/CAudioParamFilterBypassMS.h"
#include "Audio/ParamFilters/CAudioParamFilterBypassOS.h"
#include "Audio/ParamFilters/CAudioParamFilterFreqSort.h"
#include "Audio/ParamFilters/CAudioParamFilterRatio.h"
#include "Audio/Presets/CAudioParamRegistry.h"
#include "Audio/Processes/CModAbs.h"
#include "Audio/Processes/CModAlphaComp.h"
#include "Audio/Processes/CModAlphaEnv.h"
#include "Audio/Processes/CModBypass.h"
#include "Audio/Processes/CModClip.h"
#include "Audio/Processes/CModDecimator.h"
#include "Audio/Processes/CModDelay.h"
#include "Audio/Processes/CModDenormNoise.h"
#include "Audio/Processes/CModFilterFIR.h"
#include "Audio/Processes/CModFilterIIR.h"
#include "Audio/Processes/CModGain.h"
#include "Audio/Processes/CModInterpolator.h"
#include "Audio/Processes/CModLatencyUniformer.h"
#include "Audio/Processes/CModLeveler.h"
#include "Audio/Processes/CModMSCoder.h"
#include "Audio/Processes/CModMeter.h"
#include "Audio/Processes/CModMix.h"
#include "Audio/Processes/CModMult.h"
#include "Audio/Processes/CModMute.h"
#include "Audio/Processes/CModNode.h"
#include "Audio/Processes/CModOutput.h"
#include "Audio/Processes/CModProcessSwitchDef.h"
#include "Audio/Processes/CModRMS.h"
#include "Audio/Processes/CModResamplerDef.h"
#include "Audio/Processes/CModRouter.h"
#include "Audio/Processes/CModSidechain.h"
#include "Audio/Processes/CModSidechainMute.h"
#include "Audio/Processes/CModSpectrum.h"
#include "Audio/Processes/CModXOTube.h"
#include "Audio/Viz/CAudioVizCollector.h"
#include "Audio/Viz/CAudioVizSlotManager.h"
#include "Audio/Viz/CVizExchange.h"

namespace qrb {

std::span<const CCreatorRow> audioCreators()
{
    static constexpr CCreatorRow kRows[] = {
        creatorRow<CAudioEnv>("audio:audio-env"),
        creatorRow<CAudioParamConverterBW>("audio:cvt-bw"),
        creatorRow<CAudioParamConverterEnum>("audio:cvt-enum"),
        creatorRow<CAudioParamConverterFreq>("audio:cvt-freq"),
        creatorRow<CAudioParamConverterGain>("audio:cvt-gain"),
        creatorRow<CAudioParamConverterPercent>("audio:cvt-percent"),
        creatorRow<CAudioParamConverterRatio>("audio:cvt-ratio"),
        creatorRow<CAudioParamConverterReal>("audio:cvt-real"),
        creatorRow<CAudioParamConverterText>("audio:cvt-text"),
        creatorRow<CAudioParamConverterTime>("audio:cvt-time"),
        creatorRow<CAudioFilterGenArray>("audio:fltgen-array"),
        creatorRow<CAudioFilterGenArrayItem>("audio:fltgen-array-item"),
        creatorRow<CAudioFilterBypassGen>("audio:fltgen-bypass"),
        creatorRow<CAudioFilterFIRLPGen>("audio:fltgen-firlp"),
        creatorRow<CAudioFilterHBFGen>("audio:fltgen-hbf"),
        creatorRow<CAudioFilterLPHP1Gen>("audio:fltgen-lphp1"),
        creatorRow<CAudioFilterMagnusGen>("audio:fltgen-magnus"),
        creatorRow<CAudioFilterRBJGen>("audio:fltgen-rbj"),
        creatorRow<CAudioFilterSerialGen>("audio:fltgen-serial"),
        creatorRow<CAudioFilterSerialGenItem>("audio:fltgen-serial-item"),
        creatorRow<CAudioCCTable>("audio:cctable"),
        creatorRow<CAudioExtParam>("audio:ext-param"),
        creatorRow<CAudioExtParamList>("audio:ext-param-list"),
        creatorRow<CAudioInterfaceBase>("audio:interface-base"),
        creatorRow<CAudioInterfaceClient>("audio:interface-client"),
        creatorRow<CModAbsDef>("audio:modAbs"),
        creatorRow<CModAlphaCompDef>("audio:modAlphaComp"),
        creatorRow<CModAlphaEnvDef>("audio:modAlphaEnv"),
        creatorRow<CModBypassDef>("audio:modBypass"),
        creatorRow<CModClipDef>("audio:modClip"),
        creatorRow<CModDecimatorDef>("audio:modDecimator"),
        creatorRow<CModDelayDef>("audio:modDelay"),
        creatorRow<CModDenormNoiseDef>("audio:modDenormNoise"),
        creatorRow<CModFilterFIRDef>("audio:modFilterFIR"),
        creatorRow<CModFilterIIRDef>("audio:modFilterIIR"),
        creatorRow<CModGainDef>("audio:modGain"),
        creatorRow<CModInterpolatorDef>("audio:modInterpolator"),
        creatorRow<CModLatencyUniformerDef>("audio:modLatencyUniformer"),
        creatorRow<CModLevelerDef>("audio:modLeveler"),
        creatorRow<CModMSCoderDef>("audio:modMSCoder"),
        creatorRow<CModMeterDef>("audio:modMeter"),
        creatorRow<CModMixDef>("audio:modMix"),
        creatorRow<CModMultDef>("audio:modMult"),
        creatorRow<CModMuteDef>("audio:modMute"),
        creatorRow<CModNodeDef>("audio:modNode"),
        creatorRow<CModOutputDef>("audio:modOutput"),
        creatorRow<CModProcessSwitchDef>("audio:modProcessSwitch"),
        creatorRow<CModRMSDef>("audio:modRMS"),
        creatorRow<CModResamplerDef>("audio:modResampler"),
        creatorRow<CModRouterDef>("audio:modRouter"),
        creatorRow<CModSidechainDef>("audio:modSidechain"),
        creatorRow<CModSidechainMuteDef>("audio:modSidechainMute"),
        creatorRow<CModSpectrumDef>("audio:modSpectrum"),
        creatorRow<CModXOTubeDef>("audio:modXOTube"),
        creatorRow<CAudioParamDef>("audio:param"),
        creatorRow<CAudioParamAllocDef>("audio:param-alloc"),
        creatorRow<CAudioParamCollector>("audio:param-collector"),
        creatorRow<CAudioParamFilterACompDef>("audio:param-filter-acomp"),
        creatorRow<CAudioParamFilterBypassGroupSoloDef>("audio:param-filter-bypass-group-solo"),
        creatorRow<CAudioParamFilterBypassMSDef>("audio:param-filter-bypass-ms"),
        creatorRow<CAudioParamFilterBypassOSDef>("audio:param-filter-bypass-os"),
        creatorRow<CAudioParamFilterFreqSortDef>("audio:param-filter-freqsort"),
        creatorRow<CAudioParamFilterRatioDef>("audio:param-filter-ratio"),
        creatorRow<CAudioParamRegistry>("audio:param-registry"),
        creatorRow<CAudioParamRemapDef>("audio:param-remap"),
        creatorRow<CAudioParamSharedStorage>("audio:param-shared-storage"),
        creatorRow<CAudioProcessBypassStateDef>("audio:process-bypass-state"),
        creatorRow<CAudioProcessDef>("audio:process-def"),
        creatorRow<CAudioProcessLinkDef>("audio:process-link"),
        creatorRow<CAudioVizCollector>("audio:viz-collector"),
        creatorRow<CAudioVizSlotManager>("audio:viz-slot-manager"),
        creatorRow<CParamInterfaceBaseConnectorUni>("other:param-interface-base-connector-uni"),
        creatorRow<CParamInterfaceClientConnectorUni>("other:param-interface-client-connector-uni"),
        creatorRow<CVizExchange>("ui:viz-exchange"),
    };
    return kRows;
}

} // namespace qrb
