// Of the history.
export const words = {
  pastTitle: "历史", noHistory: "此服务器不保存历史。", pastFailed: "无法加载历史：{0}", pastEmpty: "此期间没有匹配项。",
  pastPeriod: "时间范围", pastPeriod60: "最近 1 小时", pastPeriod480: "最近 8 小时",
  pastPeriod1440: "最近 24 小时", pastPeriod10080: "最近 7 天", pastPeriod43200: "最近 30 天",
  pastRange: "从…到…", pastFrom: "从", pastTo: "到", pastAll: "全部", pastTarget: "目标系统",
  pastKind: "类型", kind_alarm: "报警", kind_message: "消息", kind_gap: "缺口", kind_audit: "人员操作",
  pastChange: "内容", pastChange_raised: "发生", pastChange_raised_again: "再次发生",
  pastChange_cleared: "消除", pastChange_confirmed: "已确认", pastChange_removed: "结束",
  pastChange_updated: "更改", pastChange_message: "消息", pastChange_gap: "缺口",
  pastChange_confirmation: "确认", pastChange_audit: "操作", past_requested: "已请求",
  past_accepted: "控制器已接受", past_confirmed: "控制器已确认", past_failed: "失败", past_unanswered: "无应答",
  severityFrom: "优先级不低于", pastText: "搜索", pastAt: "时间", pastEvent: "事件", pastBy: "人员、备注",
  pastNewer: "较新", pastOlder: "较旧", pastAgain: "重新加载", pastCsv: "导出（CSV）", life: "经历",
  lifeLoading: "正在加载…", closeLife: "关闭",
};
