// Of signing in and out.
export const words = {
  signInTitle: "请登录", userName: "用户名", password: "密码", signIn: "登录", signOut: "退出",
  signedIn: "{0}（{1}）", role_view: "仅查看", role_confirm: "可确认", role_engineer: "工程师",
  wrongPassword: "用户名与密码不匹配。", tooManyAttempts: "尝试次数过多，请至少等待一分钟。", signInFailed: "登录失败：{0}",
};
