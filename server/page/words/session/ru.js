// Of signing in and out.
export const words = {
  signInTitle: "Войдите в систему", userName: "Имя", password: "Пароль", signIn: "Войти",
  signOut: "Выйти", signedIn: "{0} ({1})", role_view: "только просмотр",
  role_confirm: "может подтверждать", role_engineer: "инженер",
  wrongPassword: "Имя и пароль не подходят.",
  tooManyAttempts: "Слишком много попыток. Подождите не менее минуты.",
  signInFailed: "Войти не удалось: {0}",
};
