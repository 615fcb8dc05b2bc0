// Of the statistics.
export const words = {
  period: "时间范围", period60: "最近 1 小时", period480: "最近 8 小时", period1440: "最近 24 小时",
  period10080: "最近 7 天", statisticsTarget: "目标系统", allTargets: "全部", asOf: "截至 {0}",
  asOfSince: "截至 {0}；自 {1} 起可知", noSuchTarget: "没有关于 {0} 的信息。", statisticsFailed: "无法加载统计数据：{0}",
  rateTitle: "每 10 分钟报警数", rateAt: "{0}：{1} 个报警", rateNone: "此期间没有报警。",
  rateSummary: "共 {0} 个报警；10 分钟内最多 {1} 个，自 {2} 起。", floodLine: "泛滥线：{0}", asNumbers: "以数字显示",
  rateFrom: "起始", alarmCount: "报警数", nowTitle: "当前", floodNow: "报警泛滥：报警多得无法跟踪。", inFlood: "泛滥",
  noFlood: "无泛滥", oldestWaits: "最早的未确认报警已等待 {0}，自 {1} 起。", allConfirmed: "所有报警均已确认。",
  priorities: "按优先级", priority: "优先级", countedUnconfirmed: "未确认", countedActive: "活动",
  nothingYet: "此期间无。", frequent: "最频繁的十个", statisticsEvent: "报警", chattering: "抖动报警",
  perMinute: "一分钟内", noChattering: "没有报警在一分钟内触发 3 次。", standing: "持续超过一天", standingSince: "自",
  age: "时长", noStanding: "没有持续超过一天的报警。", gaps: "缺口：可能缺少事件", gapFrom: "从", gapUntil: "到",
  gapReason: "原因", gapLostCount: "丢失", notKnown: "未知", noGaps: "据知没有缺失。", perTarget: "目标系统",
  peak: "10 分钟最多", rateState: "状态",
};
